#include "app/modResize.h"

#include <QLayout>
#include <QWidget>

#include <algorithm>

namespace {

constexpr QSize SmallestSize(640, 400);
constexpr QSize LargestSize(10000, 10000);

} // namespace

void HoldSizeLimits(QWidget& window) {
    // The window's own limits alone count, not what its controls would like to have.
    if (window.layout() != nullptr)
        window.layout()->setSizeConstraint(QLayout::SetNoConstraint);
    window.setMinimumSize(SmallestSize);
    window.setMaximumSize(LargestSize);
}

QRect StartingPlace(const QRect& freeArea) {
    const QSize size = (freeArea.size() * 0.9).expandedTo(SmallestSize).boundedTo(LargestSize);
    const QSize left = freeArea.size() - size;
    // The frame's title bar is above: more is left below.
    return {freeArea.topLeft() + QPoint(std::max(left.width() / 2, 0), std::max(left.height() / 4, 0)), size};
}

void DropSizeLimits(QWidget& window) {
    window.setMinimumSize(0, 0);
    window.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}
