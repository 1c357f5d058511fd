#include "component/viewer/DevicePixels.h"

#include <QPainter>
#include <QWidget>

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
    const QPoint pixel(static_cast<int>(std::floor(inWindow.x() + Tolerance)),
                       static_cast<int>(std::floor(inWindow.y() + Tolerance)));
    return pixel - DevicePixelsOf(widget).topLeft();
}

QPointF MiddleOfDevicePixel(const QWidget& widget, const QPoint& pixel) {
    const QPointF inWindow = QPointF(pixel + DevicePixelsOf(widget).topLeft()) + QPointF(0.5, 0.5);
    return inWindow / widget.devicePixelRatioF() - OriginInWindow(widget);
}

double CountDevicePixels(QPainter& painter) {
    const QTransform device = painter.deviceTransform();
    const double ratio = device.m11();
    painter.scale(1 / ratio, 1 / device.m22());
    painter.translate(NearestEdge(device.dx()) - device.dx(), NearestEdge(device.dy()) - device.dy());
    return ratio;
}
