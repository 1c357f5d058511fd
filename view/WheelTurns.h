#pragma once

#include <QPoint>
#include <QPointF>

class QWheelEvent;

/// Turns of a wheel or movements on a touchpad, of which a fine one reports many small ones: what is less
/// than a whole step or pixel is kept for the next.
class WheelTurns {
public:
    /// Whole steps of an ordinary wheel, positive away from the user.
    int Steps(const QWheelEvent& event);

    /// Device pixels by which the picture is to move: positive to the right and down, so away from the user.
    /// Shift or Alt makes a turn sideways.
    QPoint Pixels(const QWheelEvent& event, double ratio);

private:
    int angle_ = 0; ///< in eighths of a degree, not yet a whole step
    QPointF pixels_;
};
