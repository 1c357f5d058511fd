#include "dialogs/OneLineDelegate.h"

#include "platform/modFields.h"

QString OneLineDelegate::displayText(const QVariant& value, const QLocale& locale) const {
    return OneLine(QStyledItemDelegate::displayText(value, locale));
}
