#pragma once

#include "base/ComponentError.h"

#include <algorithm>
#include <atomic>
#include <cstdint>

/// How far a long operation has come, and whether it is to stop. The workers of the operation add to it,
/// the caller's thread reads it and raises the events; both sides may use it at the same time.
class Progress {
public:
    /// Says how much work there will be in all, once that is known, and begins to count anew.
    void Expect(std::int64_t work) noexcept {
        done_.store(0, std::memory_order_relaxed);
        expected_.store(work, std::memory_order_relaxed);
    }
    /// Adds finished work, in the same units.
    void Add(std::int64_t work) noexcept { done_.fetch_add(work, std::memory_order_relaxed); }
    std::int64_t Done() const noexcept { return done_.load(std::memory_order_relaxed); }

    /// The finished part, 0 to 1.
    double Fraction() const noexcept {
        const std::int64_t expected = expected_.load(std::memory_order_relaxed);
        return expected > 0 ? std::min(1.0, static_cast<double>(Done()) / static_cast<double>(expected))
                            : 0.0;
    }

    void Cancel() noexcept { cancelled_.store(true, std::memory_order_relaxed); }
    bool IsCancelled() const noexcept { return cancelled_.load(std::memory_order_relaxed); }

    /// Throws ErrorNumber::Cancelled once Cancel was called. Workers call it often: a cancel must take
    /// effect within 50 ms.
    void ThrowIfCancelled() const {
        if (IsCancelled())
            throw ComponentError(ErrorNumber::Cancelled, "The operation was cancelled.");
    }

private:
    std::atomic<std::int64_t> expected_{0};
    std::atomic<std::int64_t> done_{0};
    std::atomic<bool> cancelled_{false};
};
