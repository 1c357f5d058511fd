#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

/// Where the upper left of a form goes so that a place it asks about stays in sight, with what stands around
/// it: beside the place, on the side where there is most room, otherwise in the middle of `window`; always on
/// `screen`, whose size the form may exceed. All in the screen's coordinates; the form with its frame. Where
/// no side has room for the form, it covers the place as little as it can.
QPoint PlaceBeside(const QPoint& place, const QSize& form, const QRect& window, const QRect& screen);
