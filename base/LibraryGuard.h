#pragma once

#include <csetjmp>
#include <string_view>

/// The way out of a C library that must not return from its error callback. An exception may not pass
/// through the library's frames, so the callback leaves a message and jumps back to RunGuarded.
struct LibraryExit {
    std::jmp_buf jump{};
    char message[200] = "";

    /// For the library's error callback. A text that is too long is cut.
    [[noreturn]] void Leave(const char* text) {
        message[std::string_view(text).copy(message, sizeof message - 1)] = '\0';
        // NOLINTNEXTLINE(cert-err52-cpp): the libraries know no other way.
        std::longjmp(jump, 1);
    }
};

/// Runs the call; false when the library left it, with the reason in exit.message.
///
/// The jump skips destructors: between here and the library there must be no object that has one. A call is
/// therefore a lambda that captures references and holds only plain values, and a callback that runs inside
/// it may not keep such objects alive while it calls Leave.
template <class Call>
[[nodiscard]] bool RunGuarded(LibraryExit& exit, const Call& call) {
    // NOLINTNEXTLINE(cert-err52-cpp): the libraries know no other way.
    if (setjmp(exit.jump) != 0)
        return false;
    call();
    return true;
}
