#pragma once

class QFileDialog;

// How Qt's own file dialogs look here. To be called when the dialog is known not to be the system's own.

/// Makes the dialog show each file by the icon for files and each folder by that for folders. Qt's own choice
/// opens every file listed and reads its beginning, which takes long on a slow network and for ever where a
/// device or a pipe has nothing to say.
void ShowPlainFileIcons(QFileDialog& dialog);

/// Makes the columns of the dialog's list of files as wide as what stands in them, also with large letters.
/// Qt's own widths are those of sample texts, which the dates of most languages exceed. The dialog itself is
/// as large, when it comes for the first time, as the screen allows.
void FitColumns(QFileDialog& dialog);
