#include "app/MouseChoice.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QEvent>

MouseChoice::MouseChoice(QComboBox& list) : QObject(&list) {
    // The open list is a view of its own, which hears of a release before the list takes it for a choice.
    for (QObject* const source : std::initializer_list<QObject*>{&list, list.view(), list.view()->viewport()})
        source->installEventFilter(this);
}

bool MouseChoice::eventFilter(QObject*, QEvent* event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::MouseButtonRelease)
        isByMouse_ = true;
    else if (type == QEvent::KeyPress || type == QEvent::Wheel)
        isByMouse_ = false;
    return false;
}
