#include "dialogs/OneLineDelegate.h"

namespace {

constexpr qsizetype LongestShown = 500; ///< characters; wider than any screen

} // namespace

QString OneLineDelegate::displayText(const QVariant& value, const QLocale& locale) const {
    QString text = QStyledItemDelegate::displayText(value, locale).left(LongestShown);
    for (QChar& character : text)
        if (character.category() == QChar::Other_Control || character == QChar::LineSeparator ||
            character == QChar::ParagraphSeparator)
            character = u' ';
    return text;
}
