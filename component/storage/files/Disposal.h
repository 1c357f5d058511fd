#pragma once

#include <memory>
#include <thread>

/// Lets large things go on a thread of its own, one at a time: a file system needs some 0.3 seconds to take a
/// gigabyte back, and whoever cancels a save shall not wait for that.
class Disposal {
public:
    /// Waits for the last one, then lets this one go. Where no thread can be had, at once.
    void Dispose(std::shared_ptr<void> leftover);
    /// Until the last one is gone; so does the destructor.
    void Wait();

private:
    std::jthread thread_;
};
