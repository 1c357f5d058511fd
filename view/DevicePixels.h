#pragma once

#include <QPoint>
#include <QPointF>
#include <QRect>

class QPainter;
class QWidget;

// A widget's place on the screen's own pixels. Qt counts in units of the device pixel ratio, which may
// be 1.5, so that a widget may begin and end inside a device pixel; the pixel belongs to the side that has
// more of it.

/// The device pixels that the widget covers in its window.
QRect DevicePixelsOf(const QWidget& widget);

/// The device pixel, counted from the widget's first, under a position in the widget's own units. A position
/// inside the widget gives one of its pixels, one outside may give any.
QPoint DevicePixelAt(const QWidget& widget, const QPointF& position);

/// From now on the painter, fresh on a widget, counts device pixels from the widget's first one: what is
/// drawn at whole numbers is neither scaled nor smeared. Returns the device pixel ratio.
double CountDevicePixels(QPainter& painter);
