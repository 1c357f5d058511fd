// The viewer's mouse, wheel and keys.

#include "view/DevicePixels.h"
#include "view/KarvelViewer.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include <utility>

void KarvelViewer::changeEvent(QEvent* event) {
    // A disabled widget does not hear of the release.
    if (event->type() == QEvent::EnabledChange && !isEnabled()) {
        ForgetButtons();
        SetSpaceHeld(false);
    }
    QWidget::changeEvent(event);
}

void KarvelViewer::hideEvent(QHideEvent*) {
    pointer_.reset();
    ForgetButtons();
    SetSpaceHeld(false);
}

void KarvelViewer::mousePressEvent(QMouseEvent* event) {
    const Qt::MouseButton button = event->button();
    pointer_ = event->position();
    if (drag_)
        return;
    if (button == Qt::MiddleButton || (button == Qt::LeftButton && spaceHeld_)) {
        leftPressed_ = false;
        drag_ = Drag{button, DevicePixelAt(*this, event->position())};
        ShowPointer();
    } else if (button == Qt::LeftButton) {
        leftPressed_ = true;
    }
}

void KarvelViewer::mouseDoubleClickEvent(QMouseEvent* event) {
    // Two clicks in quick succession are two clicks.
    mousePressEvent(event);
}

void KarvelViewer::mouseMoveEvent(QMouseEvent* event) {
    const QPoint pixel = DevicePixelAt(*this, event->position());
    pointer_ = event->position();
    // A window that opened meanwhile may have taken the release.
    if (drag_ && (event->buttons() & drag_->button) == 0)
        ForgetButtons();
    if (drag_) {
        const QPoint delta = pixel - std::exchange(drag_->last, pixel);
        if (!delta.isNull())
            Q_EMIT Panned(delta);
    }
    Q_EMIT MouseMoved(pixel, event->buttons(), event->modifiers());
}

void KarvelViewer::mouseReleaseEvent(QMouseEvent* event) {
    if (drag_ && event->button() == drag_->button) {
        drag_.reset();
        ShowPointer();
        return;
    }
    if (event->button() != Qt::LeftButton || !std::exchange(leftPressed_, false))
        return;
    const QPoint pixel = DevicePixelAt(*this, event->position());
    if (QRect(QPoint(0, 0), PixelSize()).contains(pixel))
        Q_EMIT Clicked(pixel);
}

void KarvelViewer::wheelEvent(QWheelEvent* event) {
    event->accept();
    pointer_ = event->position();
    if ((event->modifiers() & Qt::ControlModifier) != 0) {
        if (const int steps = wheel_.Steps(*event); steps != 0)
            Q_EMIT ZoomTurned(steps, DevicePixelAt(*this, event->position()));
    } else if (const QPoint delta = wheel_.Pixels(*event, devicePixelRatioF()); !delta.isNull()) {
        Q_EMIT Turned(delta);
    }
}

void KarvelViewer::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space)
        SetSpaceHeld(true);
    else
        QWidget::keyPressEvent(event);
}

void KarvelViewer::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Space)
        QWidget::keyReleaseEvent(event);
    else if (!event->isAutoRepeat())
        SetSpaceHeld(false);
}

void KarvelViewer::focusOutEvent(QFocusEvent* event) {
    SetSpaceHeld(false);
    QWidget::focusOutEvent(event);
}

void KarvelViewer::enterEvent(QEnterEvent* event) {
    pointer_ = event->position();
    QWidget::enterEvent(event);
}

void KarvelViewer::leaveEvent(QEvent* event) {
    pointer_.reset();
    Q_EMIT PointerLeft();
    QWidget::leaveEvent(event);
}

void KarvelViewer::SetSpaceHeld(bool held) {
    if (std::exchange(spaceHeld_, held) != held)
        ShowPointer();
}

void KarvelViewer::ForgetButtons() {
    leftPressed_ = false;
    drag_.reset();
    ShowPointer();
}

void KarvelViewer::SetPointer(Qt::CursorShape shape) {
    if (std::exchange(pointerShape_, shape) != shape)
        ShowPointer();
}

void KarvelViewer::ShowPointer() {
    if (drag_)
        setCursor(Qt::ClosedHandCursor);
    else if (spaceHeld_)
        setCursor(Qt::OpenHandCursor);
    else
        setCursor(pointerShape_);
}
