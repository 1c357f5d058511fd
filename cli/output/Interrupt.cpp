#include "cli/output/Interrupt.h"

#include "cli/output/ExitStatus.h"

#include <poll.h>

#include <csignal>

namespace {

// A signal handler can reach nothing but a variable of the program.
volatile std::sig_atomic_t interrupted = 0;

extern "C" void RememberSignal(int signal) {
    interrupted = signal;
}

/// A signal that whoever started the program wants ignored, as nohup does, stays so.
void Catch(int signal) {
    struct sigaction former {};
    if (sigaction(signal, nullptr, &former) == 0 && former.sa_handler == SIG_IGN)
        return;
    struct sigaction action {};
    action.sa_handler = RememberSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = 0; // no SA_RESTART: a read that waits for input must return
    sigaction(signal, &action, nullptr);
}

} // namespace

void CatchInterrupts() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
        Catch(signal);
}

ExitStatus InterruptStatus() {
    switch (interrupted) {
    case SIGHUP:
        return ExitStatus::HungUp;
    case SIGQUIT:
        return ExitStatus::Quit;
    default:
        return ExitStatus::Interrupted;
    }
}

bool IsInterrupted() {
    return interrupted != 0;
}

void ThrowIfInterrupted() {
    if (IsInterrupted())
        throw CommandFailure(InterruptStatus(), "The command was interrupted.");
}

void WaitForInput(int descriptor) {
    // In slices: a signal between the check and the wait would otherwise be seen only when input comes.
    constexpr int SliceMilliseconds = 100;
    pollfd input{descriptor, POLLIN, 0};
    do
        ThrowIfInterrupted();
    while (poll(&input, 1, SliceMilliseconds) == 0);
    ThrowIfInterrupted();
}
