#pragma once

#include "base/Progress.h"
#include "component/AtlavexLibrary.h"

#include <functional>

/// Runs the library's long operations: the work on a thread of its own, the events on the caller's.
class Operations {
public:
    explicit Operations(AtlavexLibrary& library) : library_(library) {}

    /// Raises Begin and a first Progress, does the work while it raises Progress at most 60 times a second
    /// and at least every 50 ms, raises End, and throws what the work threw. A Cancel given inside any of
    /// these events reaches the work. The events' total is always the same; the work says through
    /// Progress::Expect what it stands for.
    void Run(const std::function<void(Progress&)>& work);
    /// The same for work that must be done on the caller's thread: it calls `step` often.
    using Step = std::function<void()>;
    void RunHere(const std::function<void(Progress&, const Step& step)>& work);

    void Cancel() {
        if (running_ != nullptr)
            running_->Cancel();
    }
    bool IsRunning() const { return running_ != nullptr; }

private:
    class Running;
    /// Does the work between its first and last events, whatever happens to it.
    void BetweenEvents(Progress& progress, const std::function<void()>& work);
    void RaiseBegin() const;
    void RaiseProgress(const Progress& progress) const;
    void RaiseEnd() const;

    AtlavexLibrary& library_;
    Progress* running_ = nullptr;
};
