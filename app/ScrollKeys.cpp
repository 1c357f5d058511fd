#include "app/ScrollKeys.h"

#include "base/CheckedNumbers.h"

#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

namespace {

int StepOf(bool tenth, int size) {
    return tenth ? CheckedRound<std::int16_t>(size / 10.0) : 1;
}

void Move(QScrollBar& bar, int by) {
    bar.setValue(std::clamp(bar.value() + by, 0, bar.maximum()));
}

} // namespace

void ScrollByKey(const QKeyEvent& key, const QSize& image, QScrollBar& horizontal, QScrollBar& vertical) {
    // The arrows of the number pad are arrows.
    const bool tenth = (key.modifiers() & ~Qt::KeypadModifier) == Qt::ControlModifier;
    switch (key.key()) {
    case Qt::Key_Left:
        return Move(horizontal, -StepOf(tenth, image.width()));
    case Qt::Key_Right:
        return Move(horizontal, StepOf(tenth, image.width()));
    case Qt::Key_Up:
        return Move(vertical, -StepOf(tenth, image.height()));
    case Qt::Key_Down:
        return Move(vertical, StepOf(tenth, image.height()));
    default:
        return;
    }
}
