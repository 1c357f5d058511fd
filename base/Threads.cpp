#include "base/Threads.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

int ThreadCount(int wanted) {
    if (wanted > 0)
        return wanted;
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()));
}

void RunOnThreads(int count, const std::function<void(int)>& work) {
    std::mutex mutex;
    std::exception_ptr fault;
    const auto guarded = [&](int number) {
        try {
            work(number);
        } catch (...) { // carried to the caller's thread, where it is thrown again
            const std::lock_guard lock(mutex);
            if (!fault)
                fault = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> threads;
        threads.reserve(static_cast<std::size_t>(std::max(0, count - 1)));
        try {
            for (int number = 1; number < count; ++number)
                threads.emplace_back(guarded, number);
        } catch (const std::system_error&) {
            // No more threads to be had: those that run are enough.
        }
        guarded(0);
    }
    if (fault)
        std::rethrow_exception(fault);
}

void ForEachOnThreads(std::size_t count, int threads,
                      const std::function<void(int thread, std::size_t item)>& work) {
    std::atomic<std::size_t> next{0};
    RunOnThreads(static_cast<int>(std::min(static_cast<std::size_t>(threads), count)), [&](int thread) {
        for (std::size_t item = next++; item < count; item = next++)
            work(thread, item);
    });
}
