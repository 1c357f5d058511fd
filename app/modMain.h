#pragma once

class QApplication;

/// Answers an option that stands alone on the command line, --version or --help, on the standard output.
/// False for anything else and where a file has that name: it is a library then. To be asked before there is
/// a QApplication, which needs a display.
bool AnswerOption(const char* argument);

/// Start-up: fills the catalogue, shows the main window (with the library file of the command line, if one is
/// named) and runs until it is closed. The program's exit status.
int RunStudio(QApplication& application);
