#include "component/library/Operations.h"

#include "base/StandardErrors.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>

namespace {

/// Between two progress events: 60 a second at most, and well within the 50 ms that a window may wait.
constexpr std::chrono::milliseconds EventInterval(17);

/// What the events count to: how much work there is turns out only when a file has been opened.
constexpr float EventTotal = 1000;

/// A thread that does the work; its failure is kept for the caller.
class Worker {
public:
    Worker(Progress& progress, const std::function<void(Progress&)>& work)
        : progress_(progress), thread_([this, &work] { Do(work); }) {}
    ~Worker() {
        if (thread_.joinable()) {
            // Reached early only when an event's handler threw: the work must not outlive the call.
            progress_.Cancel();
            thread_.join();
        }
    }
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    /// True once the work is over.
    bool WaitFor(std::chrono::milliseconds time) {
        std::unique_lock lock(mutex_);
        return over_.wait_for(lock, time, [this] { return isOver_; });
    }
    void Finish() {
        thread_.join();
        if (failure_)
            std::rethrow_exception(failure_);
    }

private:
    void Do(const std::function<void(Progress&)>& work) {
        try {
            progress_.ThrowIfCancelled();
            work(progress_);
        } catch (...) {
            failure_ = std::current_exception(); // rethrown on the caller's thread
        }
        const std::scoped_lock lock(mutex_);
        isOver_ = true;
        over_.notify_one();
    }

    Progress& progress_;
    std::exception_ptr failure_;
    std::mutex mutex_;
    std::condition_variable over_;
    bool isOver_ = false;
    std::thread thread_;
};

} // namespace

/// Marks an operation as running.
class Operations::Running {
public:
    Running(Operations& operations, Progress& progress) : operations_(operations) {
        operations_.running_ = &progress;
    }
    ~Running() { operations_.running_ = nullptr; }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

private:
    Operations& operations_;
};

void Operations::RaiseBegin() const {
    if (library_.OnProgressBegin)
        library_.OnProgressBegin(EventTotal, library_);
}

void Operations::RaiseEnd() const {
    if (library_.OnProgressEnd)
        library_.OnProgressEnd();
}

void Operations::BetweenEvents(Progress& progress, const std::function<void()>& work) {
    if (running_ != nullptr)
        throw ComponentError(ErrorNumber::Failed, "The library is busy with another operation.");
    try {
        const Running running(*this, progress);
        RaiseBegin();
        RaiseProgress(progress);
        work();
    } catch (const std::bad_alloc&) {
        RaiseEnd();
        throw LackOfMemory();
    } catch (const std::system_error& error) {
        RaiseEnd();
        if (error.code() == std::errc::resource_unavailable_try_again)
            throw LackOfMemory(); // that is how a thread that cannot be started is told
        throw;
    } catch (...) {
        RaiseEnd(); // not from a destructor: this handler, too, may throw
        throw;
    }
    RaiseEnd();
}

void Operations::RaiseProgress(const Progress& progress) const {
    if (library_.OnProgress)
        library_.OnProgress(static_cast<float>(progress.Fraction() * EventTotal));
}

void Operations::Run(const std::function<void(Progress&)>& work) {
    Progress progress;
    BetweenEvents(progress, [&] {
        Worker worker(progress, work);
        while (!worker.WaitFor(EventInterval))
            RaiseProgress(progress);
        worker.Finish();
    });
}

void Operations::RunHere(const std::function<void(Progress&, const Step&)>& work) {
    Progress progress;
    auto last = std::chrono::steady_clock::now();
    const Step step = [&] {
        if (const auto now = std::chrono::steady_clock::now(); now - last >= EventInterval) {
            last = now;
            RaiseProgress(progress);
        }
        progress.ThrowIfCancelled();
    };
    BetweenEvents(progress, [&] {
        step();
        work(progress, step);
    });
}
