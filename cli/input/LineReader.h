#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

/// Reads the standard input line by line. A signal that asks for an end (see CatchInterrupts) breaks off
/// even while nothing comes.
class LineReader {
public:
    /// `beforeWaiting` is called whenever no whole line is at hand, before more input is waited for: the
    /// moment to hand over what was printed so far.
    explicit LineReader(std::function<void()> beforeWaiting) : beforeWaiting_(std::move(beforeWaiting)) {}

    /// The next line without its end; false at the end of the input. Throws CommandFailure when interrupted,
    /// when the input cannot be read, or for a line of more than 64 KiB.
    bool Next(std::string& line);

    /// The number of the line that Next gave last, from 1.
    std::int64_t Number() const { return number_; }

private:
    bool PopLine(std::string& line);
    void ReadMore();

    std::function<void()> beforeWaiting_;
    std::string buffer_;
    std::size_t start_ = 0; ///< where the next line begins in the buffer
    bool atEnd_ = false;
    std::int64_t number_ = 0;
};
