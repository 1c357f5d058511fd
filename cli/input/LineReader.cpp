#include "cli/input/LineReader.h"

#include "base/StandardErrors.h"
#include "cli/output/ExitStatus.h"
#include "cli/output/Interrupt.h"

#include <unistd.h>

#include <array>
#include <cerrno>

namespace {

constexpr std::size_t LongestLine = 65536; // bytes; two numbers need some fifty

} // namespace

bool LineReader::Next(std::string& line) {
    while (!PopLine(line)) {
        if (atEnd_)
            return false;
        ReadMore();
    }
    ++number_;
    return true;
}

bool LineReader::PopLine(std::string& line) {
    const std::size_t end = buffer_.find('\n', start_);
    const bool lastLine = end == std::string::npos && atEnd_ && start_ < buffer_.size();
    if (end == std::string::npos && !lastLine)
        return false;
    line = buffer_.substr(start_, lastLine ? std::string::npos : end - start_);
    start_ = lastLine ? buffer_.size() : end + 1;
    return true;
}

void LineReader::ReadMore() {
    buffer_.erase(0, start_);
    start_ = 0;
    if (buffer_.size() > LongestLine)
        throw CommandFailure(ExitStatus::Failed, "Line " + std::to_string(number_ + 1) +
                                                     " of the input is too long to be a pair of numbers.");
    beforeWaiting_();
    WaitForInput(STDIN_FILENO);
    std::array<char, LongestLine> block;
    const ssize_t got = read(STDIN_FILENO, block.data(), block.size());
    if (got < 0 && errno != EINTR && errno != EAGAIN)
        throw CommandFailure(ExitStatus::Failed,
                             "The standard input cannot be read: " + SystemReason(errno) + ".");
    if (got > 0)
        buffer_.append(block.data(), static_cast<std::size_t>(got));
    atEnd_ = got == 0;
}
