#include "platform/FileDialogColumns.h"

#include <QFileDialog>
#include <QHeaderView>
#include <QScreen>
#include <QTreeView>

namespace {

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
