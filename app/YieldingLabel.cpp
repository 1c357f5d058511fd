#include "app/YieldingLabel.h"

#include <QPainter>

QSize YieldingLabel::minimumSizeHint() const {
    return {0, QLabel::minimumSizeHint().height()};
}

void YieldingLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect place = contentsRect();
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, place.width()));
}
