#include "view/DevicePixels.h"

#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace {

/// What division by the ratio and multiplication with it may lose.
constexpr double Tolerance = 1e-6;

QPointF OriginInWindow(const QWidget& widget) {
    return widget.mapTo(widget.window(), QPointF(0, 0));
}

/// Halves go up, as where Qt cuts the painting of one widget from that of its neighbour.
int NearestEdge(double position) {
    return static_cast<int>(std::floor(position + 0.5));
}

QPoint WholePoint(const QPointF& position) {
    return {static_cast<int>(std::floor(position.x())), static_cast<int>(std::floor(position.y()))};
}

} // namespace

QRect DevicePixelsOf(const QWidget& widget) {
    const QPointF origin = OriginInWindow(widget);
    const double ratio = widget.devicePixelRatioF();
    const QPoint first(NearestEdge(origin.x() * ratio), NearestEdge(origin.y() * ratio));
    const QPoint end(NearestEdge((origin.x() + widget.width()) * ratio),
                     NearestEdge((origin.y() + widget.height()) * ratio));
    return {first, QSize(end.x() - first.x(), end.y() - first.y())};
}

QPoint DevicePixelAt(const QWidget& widget, const QPointF& position) {
    const QPointF inWindow = (position + OriginInWindow(widget)) * widget.devicePixelRatioF();
    const QPoint pixel = WholePoint(inWindow + QPointF(Tolerance, Tolerance));
    const QRect place = DevicePixelsOf(widget);
    const QPoint inPlace = pixel - place.topLeft();
    // A device pixel on the edge is painted by one of two neighbours and may be reported to the other.
    if (place.isEmpty() || !widget.rect().contains(WholePoint(position)))
        return inPlace;
    return {std::clamp(inPlace.x(), 0, place.width() - 1), std::clamp(inPlace.y(), 0, place.height() - 1)};
}

double CountDevicePixels(QPainter& painter) {
    const QTransform device = painter.deviceTransform();
    const double ratio = device.m11();
    painter.scale(1 / ratio, 1 / device.m22());
    painter.translate(NearestEdge(device.dx()) - device.dx(), NearestEdge(device.dy()) - device.dy());
    return ratio;
}
