#pragma once

#include <QEvent>
#include <QObject>
#include <QPointer>
#include <QSize>
#include <QWidget>

#include <functional>
#include <vector>

class QComboBox;
class QKeyEvent;
class QScrollBar;

// What the main window listens to beside its controls' own signals: keys, the wheel, and what a choice was
// made with.

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

/// Moves the scroll bars by an arrow key: one unit, or with exactly Ctrl held a tenth of the image's size,
/// rounded half to even to 16 bits (ErrorNumber::Overflow). Ends at the bars' ends; other keys do nothing.
void ScrollByKey(const QKeyEvent& key, const QSize& image, QScrollBar& horizontal, QScrollBar& vertical);

/// Tells whether the entry of a drop-down list that was chosen last was chosen with the mouse. Who clicks an
/// entry wants to go on with what it shows; who steps through the list by keys wants to stay in it.
class MouseChoice : public QObject {
public:
    explicit MouseChoice(QComboBox& list);

    /// To be asked when the list says that an entry was chosen.
    bool IsByMouse() const { return isByMouse_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isByMouse_ = false;
};
