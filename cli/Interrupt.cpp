#include "cli/Interrupt.h"

#include "cli/ExitStatus.h"

#include <csignal>

namespace {

// A signal handler can reach nothing but a variable of the program.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void RememberSignal(int) {
    interrupted = 1;
}

} // namespace

void CatchInterrupts() {
    struct sigaction action {};
    action.sa_handler = RememberSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0; // no SA_RESTART: a read that waits for input must return
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

bool IsInterrupted() {
    return interrupted != 0;
}

void ThrowIfInterrupted() {
    if (IsInterrupted())
        throw CommandFailure(ExitStatus::Interrupted, "The command was interrupted.");
}
