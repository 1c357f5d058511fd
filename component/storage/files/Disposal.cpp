#include "component/storage/files/Disposal.h"

#include <system_error>
#include <utility>

void Disposal::Dispose(std::shared_ptr<void> leftover) {
    Wait();
    try {
        thread_ = std::jthread([gone = std::move(leftover)]() mutable { gone.reset(); });
    } catch (const std::system_error&) {
        // No thread: what was to be taken is gone already, with the function that held it.
        return;
    }
}

void Disposal::Wait() {
    if (thread_.joinable())
        thread_.join();
}
