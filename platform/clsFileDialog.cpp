#include "platform/clsFileDialog.h"

#include "base/CheckedNumbers.h"
#include "platform/FileDialogLooks.h"
#include "platform/FilterText.h"
#include "platform/modMessages.h"
#include "platform/modRegistry.h"

#include <QAbstractItemView>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>

namespace {

const auto FilterIndexName = QStringLiteral("FilterIndex");
const auto InitDirName = QStringLiteral("InitDir");
const auto FileNameName = QStringLiteral("FileName");

/// Where the file's own name begins: after the last "/", or after the last "\" in a path without "/".
qsizetype StartOfName(const QString& path) {
    const qsizetype slash = path.lastIndexOf(u'/');
    return (slash != -1 ? slash : path.lastIndexOf(u'\\')) + 1;
}

void SetMode(QFileDialog& dialog, bool opens) {
    dialog.setOptions(QFileDialog::DontUseNativeDialog | QFileDialog::HideNameFilterDetails);
    ShowPlainFileIcons(dialog);
    FitColumns(dialog);
    dialog.setFilter(QDir::AllEntries | QDir::AllDirs | QDir::NoDotAndDotDot);
    dialog.setAcceptMode(opens ? QFileDialog::AcceptOpen : QFileDialog::AcceptSave);
    dialog.setFileMode(opens ? QFileDialog::ExistingFile : QFileDialog::AnyFile);
    dialog.setDefaultSuffix(QString());
}

/// Selecting an empty name does nothing in Qt; the field itself has to be emptied. Then the list: an empty
/// name makes Qt select the folder itself, which would count as the choice, and a file that is still selected
/// would write its name into the field again as soon as the folder has been read.
void ForgetFileName(QFileDialog& dialog) {
    for (auto* const field : dialog.findChildren<QLineEdit*>(QStringLiteral("fileNameEdit")))
        field->clear();
    if (const auto* const list = dialog.findChild<QAbstractItemView*>(QStringLiteral("listView")))
        list->selectionModel()->clear();
}

/// A name that is typed without an ending gets that of the filter which is chosen at the time, before
/// anything is asked about the file: the dialogs that open would not list it otherwise.
QMetaObject::Connection CompleteNames(QFileDialog& dialog, const FilterText& filter) {
    const auto complete = [&dialog, filter](const QString& selected) {
        dialog.setDefaultSuffix(filter.EndingOf(selected));
    };
    complete(dialog.selectedNameFilter());
    return QObject::connect(&dialog, &QFileDialog::filterSelected, &dialog, complete);
}

/// Qt asks before it replaces a file, but takes a name in a folder that does not exist.
bool AskForFile(QFileDialog& dialog) {
    while (dialog.exec() == QDialog::Accepted) {
        const QString folder = QFileInfo(dialog.selectedFiles().constFirst()).path();
        if (QFileInfo(folder).isDir())
            return true;
        ShowMessage(
            dialog.parentWidget(),
            QFileDialog::tr("%1\nDirectory not found.\nPlease verify the correct directory name was given.")
                .arg(folder));
    }
    return false;
}

} // namespace

void clsFileDialog::Init(const QString& applicationKey, const QString& dialogKey) {
    applicationKey_ = applicationKey;
    dialogKey_ = dialogKey;
    // What is no 16-bit number counts as missing: 0.
    filterIndex_ = QueryValue(RootKey::CurrentUser, KeyPath(), FilterIndexName).toString().toShort();
    initDir_ = QueryValue(RootKey::CurrentUser, KeyPath(), InitDirName).toString();
    fileName_ = QueryValue(RootKey::CurrentUser, KeyPath(), FileNameName).toString();
}

bool clsFileDialog::Show(QFileDialog& systemDialog) {
    if (dialogType_ != Open && dialogType_ != Save)
        return false;
    SetMode(systemDialog, dialogType_ == Open);
    const FilterText filter(filter_);
    systemDialog.setWindowTitle(title_);
    systemDialog.setNameFilters(filter.QtFilters());
    systemDialog.selectNameFilter(filter.QtFilters().value(filterIndex_ - 1, filter.QtFilters().value(0)));
    systemDialog.setDirectory(QFileInfo(initDir_).isDir() ? initDir_ : QDir::currentPath());
    ForgetFileName(systemDialog);
    const bool saves = dialogType_ == Save;
    const auto completing = saves ? CompleteNames(systemDialog, filter) : QMetaObject::Connection();
    const bool chosen = AskForFile(systemDialog);
    QObject::disconnect(completing);
    if (!chosen)
        return false;
    filterIndex_ = CheckedNarrow<std::int16_t>(filter.PositionOf(systemDialog.selectedNameFilter()) + 1);
    fileName_ = systemDialog.selectedFiles().constFirst();
    initDir_ = fileName_.left(StartOfName(fileName_));
    return true;
}

void clsFileDialog::SaveSettings() const {
    const QString maker = QStringLiteral("Software\\Kestova");
    CreateNewKey(RootKey::CurrentUser, maker);
    CreateNewKey(RootKey::CurrentUser, maker + u'\\' + applicationKey_);
    CreateNewKey(RootKey::CurrentUser, KeyPath());
    SetKeyValue(RootKey::CurrentUser, KeyPath(), FilterIndexName, QString::number(filterIndex_));
    SetKeyValue(RootKey::CurrentUser, KeyPath(), InitDirName, initDir_);
    SetKeyValue(RootKey::CurrentUser, KeyPath(), FileNameName, fileName_);
}

QString clsFileDialog::OnlyFileName() const {
    return fileName_.mid(StartOfName(fileName_));
}

QString clsFileDialog::KeyPath() const {
    return QStringLiteral("Software\\Kestova\\") + applicationKey_ + u'\\' + dialogKey_;
}
