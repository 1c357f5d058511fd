#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <vector>

class QKeyEvent;

/// Shows every arrow key pressed in a window to one handler, before the control that has the focus gets it,
/// and exactly once.
class ArrowKeys : public QObject {
public:
    /// The keys of `window`; where the focus is on one of the `consumers`, the control itself gets none.
    ArrowKeys(QWidget& window, std::vector<QWidget*> consumers, std::function<void(const QKeyEvent&)> handle);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool IsPropagation(const QWidget& watched, const QKeyEvent& event);

    QWidget& window_;
    std::vector<QWidget*> consumers_;
    std::function<void(const QKeyEvent&)> handle_;

    // A key that a control does not take travels on to its parents as the same event.
    const QEvent* last_ = nullptr;
    quint64 lastTime_ = 0;
    QPointer<QWidget> lastReceiver_;
};
