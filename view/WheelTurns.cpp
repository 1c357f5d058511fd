#include "view/WheelTurns.h"

#include <QApplication>
#include <QWheelEvent>

namespace {

/// Height of one of the lines in which the desktop counts a turn, in units of the device pixel ratio.
constexpr double LineHeight = 20;

constexpr double AngleOfStep = QWheelEvent::DefaultDeltasPerStep;

/// How far the event moves the picture, in units of the device pixel ratio.
QPointF MovementOf(const QWheelEvent& event) {
    // Only a device that says when a movement begins and ends gives pixels that can be relied upon.
    if (event.phase() != Qt::NoScrollPhase && !event.pixelDelta().isNull())
        return event.pixelDelta();
    return QPointF(event.angleDelta()) * (QApplication::wheelScrollLines() * LineHeight / AngleOfStep);
}

/// Some desktops turn the axis for Alt themselves: then only the other one has a value.
QPointF Sideways(const QPointF& movement) {
    return {movement.y() != 0 ? movement.y() : movement.x(), 0};
}

} // namespace

int WheelTurns::Steps(const QWheelEvent& event) {
    const QPoint delta = event.angleDelta();
    const int turned = delta.y() != 0 ? delta.y() : delta.x();
    // Turning back must not have to undo first what was kept.
    if ((turned > 0) != (angle_ > 0))
        angle_ = 0;
    angle_ += turned;
    const int steps = angle_ / QWheelEvent::DefaultDeltasPerStep;
    angle_ %= QWheelEvent::DefaultDeltasPerStep;
    return steps;
}

QPoint WheelTurns::Pixels(const QWheelEvent& event, double ratio) {
    QPointF movement = MovementOf(event);
    if ((event.modifiers() & (Qt::ShiftModifier | Qt::AltModifier)) != 0)
        movement = Sideways(movement);
    pixels_ += movement * ratio;
    const QPoint whole(static_cast<int>(pixels_.x()), static_cast<int>(pixels_.y()));
    pixels_ -= whole;
    return whole;
}
