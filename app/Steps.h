#pragma once

#include <exception>
#include <functional>

/// Does one thing after another even when some fail; the first failure leaves at the end. What has been done
/// to the library must be shown and marked as unsaved whatever else goes wrong.
class Steps {
public:
    void Do(const std::function<void()>& step) {
        try {
            step();
        } catch (const std::exception&) {
            if (!first_)
                first_ = std::current_exception();
        }
    }
    bool HaveFailed() const { return first_ != nullptr; }
    void ThrowFirst() const {
        if (first_)
            std::rethrow_exception(first_);
    }

private:
    std::exception_ptr first_;
};
