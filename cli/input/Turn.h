#pragma once

#include <atomic>
#include <chrono>
#include <optional>
#include <string>
#include <thread>

/// A command's wait for the turn of its library, which other programs use: told on the standard error stream
/// after a second, ended by a signal or when it has lasted as long as the user allows.
class Turn {
public:
    /// `longest`: nothing for as long as it takes.
    Turn(std::string file, std::optional<std::chrono::milliseconds> longest);

    /// Whether to go on after having waited so long. By any thread.
    bool GoOn(std::chrono::milliseconds waited) noexcept;
    /// Tells of a wait that another thread has noticed. By the thread that made the object.
    void TellIfDue() noexcept;

private:
    std::string file_;
    std::optional<std::chrono::milliseconds> longest_;
    std::thread::id home_ = std::this_thread::get_id();
    std::atomic<bool> due_ = false;
    bool told_ = false;
};

/// "--wait SECONDS" as a time; nothing for an empty text. Throws UsageError for anything but a number of
/// seconds from 0.
std::optional<std::chrono::milliseconds> ParseWait(const std::string& text);
