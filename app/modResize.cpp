#include "app/modResize.h"

#include <QLayout>
#include <QWidget>

void HoldSizeLimits(QWidget& window) {
    // The window's own limits alone count, not what its controls would like to have.
    if (window.layout() != nullptr)
        window.layout()->setSizeConstraint(QLayout::SetNoConstraint);
    window.setMinimumSize(640, 400);
    window.setMaximumSize(10000, 10000);
}

void DropSizeLimits(QWidget& window) {
    window.setMinimumSize(0, 0);
    window.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
}
