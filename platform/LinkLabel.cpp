#include "platform/LinkLabel.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleOptionFocusRect>
#include <QStylePainter>

LinkLabel::LinkLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setForegroundRole(QPalette::Link);
    // A wide form must not make the empty space beside the caption part of the link.
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    QFont underlined = font();
    underlined.setUnderline(true);
    setFont(underlined);
}

void LinkLabel::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(event->button() == Qt::LeftButton);
}

void LinkLabel::mouseReleaseEvent(QMouseEvent* event) {
    event->accept();
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT Activated();
}

void LinkLabel::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        Q_EMIT Activated();
    else
        QLabel::keyPressEvent(event);
}

void LinkLabel::paintEvent(QPaintEvent* event) {
    QLabel::paintEvent(event);
    if (!hasFocus())
        return;
    QStyleOptionFocusRect option;
    option.initFrom(this);
    QStylePainter(this).drawPrimitive(QStyle::PE_FrameFocusRect, option);
}
