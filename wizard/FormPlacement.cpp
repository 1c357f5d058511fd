#include "wizard/FormPlacement.h"

#include <algorithm>
#include <array>

namespace {

/// What is left free about the place where there is room: a crossing and the figures printed at it.
constexpr int Clearance = 160;

/// A span of so many pixels, moved so that it lies between the two ends, and rather begins there.
int Within(int start, int length, int first, int end) {
    return std::max(std::min(start, end - length), first);
}

} // namespace

QPoint PlaceBeside(const QPoint& place, const QSize& form, const QRect& window, const QRect& screen) {
    const int right = screen.x() + screen.width();
    const int bottom = screen.y() + screen.height();
    // What each side has over when the form stands there: right, left, below, above.
    const std::array<int, 4> over{right - place.x() - 1 - form.width(), place.x() - screen.x() - form.width(),
                                  bottom - place.y() - 1 - form.height(),
                                  place.y() - screen.y() - form.height()};
    const auto side = std::max_element(over.begin(), over.end()) - over.begin();
    const int gap = std::clamp(over.at(static_cast<std::size_t>(side)), 0, Clearance);
    QPoint corner = window.center() - QPoint(form.width() / 2, form.height() / 2);
    if (side == 0)
        corner.setX(place.x() + 1 + gap);
    else if (side == 1)
        corner.setX(place.x() - gap - form.width());
    else if (side == 2)
        corner.setY(place.y() + 1 + gap);
    else
        corner.setY(place.y() - gap - form.height());
    return {Within(corner.x(), form.width(), screen.x(), right),
            Within(corner.y(), form.height(), screen.y(), bottom)};
}
