#include "platform/modBrowseFolder.h"

#include "platform/FileDialogLooks.h"

#include <QDir>
#include <QFileDialog>

QString BrowseForFolder(QWidget* parent, const QString& title, const QString& preselect) {
    QFileDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("FolderDialog"));
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::ShowDirsOnly);
    ShowPlainFileIcons(dialog);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setWindowTitle(title);
    dialog.setDirectory(!preselect.isEmpty() && QFileInfo(preselect).isDir() ? preselect : QDir::homePath());
    return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().constFirst() : QString();
}
