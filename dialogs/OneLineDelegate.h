#pragma once

#include <QStyledItemDelegate>

/// Shows the beginning of each text as one line: a view that laid out a text of a megabyte would stand still.
class OneLineDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};
