#pragma once

/// Lets SIGINT and SIGTERM ask for an orderly end instead of ending the program at once. Blocking system
/// calls are broken off by them.
void CatchInterrupts();

/// True once one of the signals has arrived.
bool IsInterrupted();

/// Throws CommandFailure (ExitStatus::Interrupted) once one of the signals has arrived.
void ThrowIfInterrupted();

/// Waits until the descriptor has something to read, or has come to its end. Throws CommandFailure when one
/// of the signals arrives before.
void WaitForInput(int descriptor);
