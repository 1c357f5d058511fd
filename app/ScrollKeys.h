#pragma once

#include <QSize>

class QKeyEvent;
class QScrollBar;

/// Moves the scroll bars by an arrow key: one unit, or with exactly Ctrl held a tenth of the image's size,
/// rounded half to even to 16 bits (ErrorNumber::Overflow). Ends at the bars' ends; other keys do nothing.
void ScrollByKey(const QKeyEvent& key, const QSize& image, QScrollBar& horizontal, QScrollBar& vertical);
