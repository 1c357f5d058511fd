#pragma once

#include <QLabel>

/// A line of text that gives its room to its neighbours: where it does not fit it is cut, with an ellipsis.
class YieldingLabel : public QLabel {
    Q_OBJECT
public:
    using QLabel::QLabel;

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};
