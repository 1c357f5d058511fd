#pragma once

#include <QStyledItemDelegate>

/// Shows the beginning of each text as one line.
class OneLineDelegate : public QStyledItemDelegate {
    Q_OBJECT
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QString displayText(const QVariant& value, const QLocale& locale) const override;
};
