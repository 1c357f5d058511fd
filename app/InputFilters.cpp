#include "app/InputFilters.h"

#include "base/CheckedNumbers.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QMenuBar>
#include <QScrollBar>

#include <algorithm>

namespace {

bool IsArrow(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
}

int StepOf(bool tenth, int size) {
    return tenth ? CheckedRound<std::int16_t>(size / 10.0) : 1;
}

void Move(QScrollBar& bar, int by) {
    bar.setValue(std::clamp(bar.value() + by, 0, bar.maximum()));
}

} // namespace

ArrowKeys::ArrowKeys(QWidget& window, std::vector<QWidget*> consumers,
                     std::function<void(const QKeyEvent&)> handle)
    : window_(window), consumers_(std::move(consumers)), handle_(std::move(handle)) {
    QApplication::instance()->installEventFilter(this);
}

bool ArrowKeys::IsPropagation(const QWidget& watched, const QKeyEvent& event) {
    // A widget counts as its own ancestor; the same key pressed again on it is another one.
    return &event == last_ && event.timestamp() == lastTime_ && lastReceiver_ != nullptr &&
           &watched != lastReceiver_ && watched.isAncestorOf(lastReceiver_);
}

bool ArrowKeys::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress)
        return false;
    auto* const receiver = qobject_cast<QWidget*>(watched);
    const auto& key = *static_cast<QKeyEvent*>(event);
    if (receiver == nullptr || receiver->window() != &window_ || !IsArrow(key.key()) || !window_.isEnabled())
        return false;
    // Whoever walks through the menus moves no map.
    if (qobject_cast<QMenuBar*>(window_.focusWidget()) != nullptr)
        return false;
    if (!IsPropagation(*receiver, key))
        handle_(key);
    last_ = event;
    lastTime_ = key.timestamp();
    lastReceiver_ = receiver;
    return std::find(consumers_.begin(), consumers_.end(), receiver) != consumers_.end();
}

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
