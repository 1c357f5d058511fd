#include "app/ArrowKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMenuBar>

#include <algorithm>

namespace {

bool IsArrow(int key) {
    return key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Up || key == Qt::Key_Down;
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
