#pragma once

#include "cli/output/ExitStatus.h"

/// Lets SIGINT, SIGTERM, SIGHUP and SIGQUIT ask for an orderly end instead of ending the program at once,
/// unless they are ignored. Blocking system calls are broken off by them.
void CatchInterrupts();

/// True once one of the signals has arrived.
bool IsInterrupted();

/// The exit status that tells which signal it was.
ExitStatus InterruptStatus();

/// Throws CommandFailure (InterruptStatus) once one of the signals has arrived.
void ThrowIfInterrupted();

/// Waits until the descriptor has something to read, or has come to its end. Throws CommandFailure when one
/// of the signals arrives before.
void WaitForInput(int descriptor);
