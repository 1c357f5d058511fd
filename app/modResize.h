#pragma once

class QWidget;

// The limits of the main window's size, in pixels: 640 × 400 to 10000 × 10000 while they are held.

void HoldSizeLimits(QWidget& window);
void DropSizeLimits(QWidget& window);
