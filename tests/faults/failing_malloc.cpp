// Loaded before a program (LD_PRELOAD): lets the n-th allocation fail that is asked for, n being FAIL_AT in
// the environment. Without it, the number of allocations is written to the file FAIL_COUNT at the end.

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

// Names of the C library's own; a shim in front of malloc has no other way to the real one.
extern "C" void* __libc_malloc(std::size_t size);
extern "C" void* __libc_calloc(std::size_t count, std::size_t size);
extern "C" void* __libc_realloc(void* block, std::size_t size);

namespace {

std::atomic<long> asked{0};

long FailAt() {
    static const long at = [] {
        const char* text = std::getenv("FAIL_AT");
        return text != nullptr ? std::strtol(text, nullptr, 10) : 0L;
    }();
    return at;
}

bool IsToFail() {
    const bool fails = ++asked == FailAt();
    if (fails)
        errno = ENOMEM;
    return fails;
}

/// Says at the end of the program how many allocations there were.
class Report {
public:
    Report() = default;
    ~Report() {
        const long count = asked;
        const char* name = std::getenv("FAIL_COUNT");
        if (name == nullptr)
            return;
        if (std::FILE* file = std::fopen(name, "w")) {
            std::fprintf(file, "%ld", count);
            std::fclose(file);
        }
    }
    Report(const Report&) = delete;
    Report& operator=(const Report&) = delete;
};

const Report report;

} // namespace

extern "C" void* malloc(std::size_t size) {
    return IsToFail() ? nullptr : __libc_malloc(size);
}

extern "C" void* calloc(std::size_t count, std::size_t size) {
    return IsToFail() ? nullptr : __libc_calloc(count, size);
}

extern "C" void* realloc(void* block, std::size_t size) {
    return IsToFail() ? nullptr : __libc_realloc(block, size);
}
