#pragma once

#include <QRect>

class QWidget;

// The limits of the main window's size, in pixels: 640 × 400 to 10000 × 10000 while they are held.

void HoldSizeLimits(QWidget& window);
void DropSizeLimits(QWidget& window);

/// Where the main window starts on a screen of which this area is free: most of it, so that a large screen is
/// used and a small one shows the window whole, with room for the frame that the desktop puts around it.
QRect StartingPlace(const QRect& freeArea);
