#include "wizard/NameList.h"

#include <QGuiApplication>
#include <QStyleHints>

#include <algorithm>

namespace {

QString Folded(const QString& text) {
    return text.toCaseFolded().remove(u' ');
}

bool HasWord(const QString& text, const QString& sought) {
    for (qsizetype start = 0; start < text.size(); ++start) {
        const bool isWord =
            text[start].isLetterOrNumber() && (start == 0 || !text[start - 1].isLetterOrNumber());
        if (isWord && Folded(text.mid(start)).startsWith(sought))
            return true;
    }
    return false;
}

bool HasPart(const QString& text, const QString& sought) {
    return Folded(text).contains(sought);
}

} // namespace

void NameList::keyboardSearch(const QString& typed) {
    if (model() == nullptr || model()->rowCount() == 0)
        return;
    const bool goesOn = sinceLastKey_.isValid() &&
                        !sinceLastKey_.hasExpired(QGuiApplication::styleHints()->keyboardInputInterval());
    sinceLastKey_.start();
    sought_ = Folded(goesOn ? sought_ + typed : typed);
    // A word that goes on may fit the same entry still; a new one is looked for behind it.
    const int row = sought_.isEmpty() ? -1 : RowOf(sought_, currentIndex().row() + (goesOn ? 0 : 1));
    if (row >= 0)
        setCurrentIndex(model()->index(row, modelColumn()));
}

int NameList::RowOf(const QString& sought, int from) const {
    const int rows = model()->rowCount();
    for (const auto fits : {HasWord, HasPart}) {
        for (int step = 0; step < rows; ++step) {
            const int row = (std::max(from, 0) + step) % rows;
            if (fits(model()->index(row, modelColumn()).data().toString(), sought))
                return row;
        }
    }
    return -1;
}
