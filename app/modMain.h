#pragma once

class QApplication;

/// Start-up: fills the catalogue, shows the main window (with the library file of the command line, if one is
/// named) and runs until it is closed. The program's exit status.
int RunStudio(QApplication& application);
