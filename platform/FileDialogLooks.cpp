#include "platform/FileDialogLooks.h"

#include <QCoreApplication>
#include <QFileDialog>
#include <QFileIconProvider>
#include <QHeaderView>
#include <QScreen>
#include <QTreeView>

namespace {

/// Says what a thing is from what is known without opening it.
class PlainIcons : public QFileIconProvider {
public:
    using QFileIconProvider::icon;
    QIcon icon(const QFileInfo& info) const override {
        return QFileIconProvider::icon(info.isDir() ? IconType::Folder : IconType::File);
    }
    QString type(const QFileInfo& info) const override {
        if (info.isDir())
            return QCoreApplication::translate("QAbstractFileIconProvider", "Folder");
        const QString ending = info.suffix();
        return ending.isEmpty()
                   ? QCoreApplication::translate("QAbstractFileIconProvider", "File")
                   : QCoreApplication::translate("QAbstractFileIconProvider", "%1 File").arg(ending);
    }
};

/// Keeps the icons for a dialog: Qt ends a window's children in the order in which they came, so they outlast
/// the list of files, whose thread asks for them.
class IconsOfDialog : public QObject {
public:
    using QObject::QObject;
    PlainIcons icons;
};

/// Letters of a name that should be seen before the user has to widen the column.
constexpr int LettersOfAName = 32;

/// Size of a dialog that shows all columns and some twenty files, in letters; at most this part of the
/// screen.
constexpr QSize LettersOfDialog(105, 30);
constexpr double PartOfScreen = 0.9;

void EnlargeAtFirst(QFileDialog& dialog) {
    if (dialog.internalWinId() != 0)
        return; // it was shown before, and the user may have made it smaller
    const QFontMetrics letters = dialog.fontMetrics();
    const QSize wanted(LettersOfDialog.width() * letters.averageCharWidth(),
                       LettersOfDialog.height() * letters.lineSpacing());
    dialog.resize(wanted.boundedTo(dialog.screen()->availableSize() * PartOfScreen));
}

} // namespace

void ShowPlainFileIcons(QFileDialog& dialog) {
    if (dynamic_cast<const PlainIcons*>(dialog.iconProvider()) == nullptr)
        dialog.setIconProvider(&(new IconsOfDialog(&dialog))->icons);
}

void FitColumns(QFileDialog& dialog) {
    const auto* const list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"));
    if (list == nullptr)
        return;
    QHeaderView& header = *list->header();
    for (int column = 1; column < header.count(); ++column)
        header.setSectionResizeMode(column, QHeaderView::ResizeToContents);
    EnlargeAtFirst(dialog);
    header.resizeSection(0, LettersOfAName * list->fontMetrics().averageCharWidth());
}
