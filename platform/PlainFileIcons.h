#pragma once

class QFileDialog;

/// Makes the dialog show each file by the icon for files and each folder by that for folders. Qt's own choice
/// opens every file listed and reads its beginning, which takes long on a slow network and for ever where a
/// device or a pipe has nothing to say. To be called when the dialog is known not to be the system's own.
void ShowPlainFileIcons(QFileDialog& dialog);
