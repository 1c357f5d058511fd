#pragma once

#include <QString>

class QWidget;

/// Asks for an existing folder and gives its path, or nothing when cancelled. Starts in the folder to
/// preselect, which is chosen if nothing else is; in the home folder when that does not exist. The dialog has
/// the objectName "FolderDialog".
QString BrowseForFolder(QWidget* parent, const QString& title, const QString& preselect);
