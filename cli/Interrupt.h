#pragma once

/// Lets SIGINT and SIGTERM ask for an orderly end instead of ending the program at once. Blocking system
/// calls are broken off by them.
void CatchInterrupts();

/// True once one of the signals has arrived.
bool IsInterrupted();

/// Throws CommandFailure (ExitStatus::Interrupted) once one of the signals has arrived.
void ThrowIfInterrupted();
