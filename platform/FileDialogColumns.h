#pragma once

class QFileDialog;

/// Makes the columns of the dialog's list of files as wide as what stands in them, also with large letters.
/// Qt's own widths are those of sample texts, which the dates of most languages exceed. The dialog itself is
/// as large, when it comes for the first time, as the screen allows. To be called when the
/// dialog is known not to be the system's own.
void FitColumns(QFileDialog& dialog);
