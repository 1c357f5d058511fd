#include "app/WheelGuard.h"

#include <QEvent>
#include <QWidget>

bool WheelGuard::eventFilter(QObject* watched, QEvent* event) {
    const auto* const control = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::Wheel || control == nullptr || control->hasFocus())
        return false;
    event->ignore();
    return true;
}
