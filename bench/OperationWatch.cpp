#include "bench/OperationWatch.h"

#include <QApplication>
#include <QDialog>
#include <QMetaObject>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>

#include <algorithm>
#include <chrono>
#include <random>

OperationWatch::OperationWatch() {
    clock_.start();
    ticker_.setTimerType(Qt::PreciseTimer);
    connect(&ticker_, &QTimer::timeout, this, &OperationWatch::Tick);
    QApplication::instance()->installEventFilter(this);
}

OperationWatch::~OperationWatch() = default;

void OperationWatch::Begin(std::optional<double> cancelAt) {
    result_ = {};
    fraction_ = 0;
    pressed_ = 0;
    begun_ = lastTick_ = Now();
    running_ = true;
    ticker_.start(1);
    if (cancelAt)
        presser_ = std::jthread([this, cancelAt] { PressWhen(*cancelAt); });
}

OperationWatch::Result OperationWatch::End() {
    if (!running_)
        return result_;
    Tick();
    running_ = false;
    ticker_.stop();
    fraction_ = 2; // whoever still waits for the middle need not
    presser_ = {};
    result_.whole = Now() - begun_;
    return result_;
}

void OperationWatch::Tick() {
    const double now = Now();
    result_.longestGap = std::max(result_.longestGap, now - lastTick_);
    lastTick_ = now;
}

bool OperationWatch::eventFilter(QObject* watched, QEvent* event) {
    if (running_ && event->type() == QEvent::Show && watched->objectName() == QStringLiteral("frmProgress"))
        Follow(*qobject_cast<QDialog*>(watched));
    return false;
}

void OperationWatch::Follow(QDialog& dialog) {
    dialog_ = &dialog;
    auto* const bar = dialog.findChild<QProgressBar*>(QStringLiteral("ProgressBar1"));
    connect(bar, &QProgressBar::valueChanged, this, [this, bar](int value) {
        ++result_.values;
        fraction_ = static_cast<double>(value) / bar->maximum();
    });
    connect(&dialog, &QObject::destroyed, this, [this] {
        if (pressed_ > 0)
            result_.cancel = Now() - pressed_;
    });
}

void OperationWatch::PressWhen(double fraction) {
    while (fraction_ < fraction)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    if (fraction_ >= 2)
        return;
    std::this_thread::sleep_for(std::chrono::milliseconds(std::random_device()() % 20));
    pressed_ = Now();
    QMetaObject::invokeMethod(
        this, [this] { Press(); }, Qt::QueuedConnection);
}

void OperationWatch::Press() {
    if (dialog_.isNull())
        return; // over before it could be pressed
    auto* const button = dialog_->findChild<QPushButton*>(QStringLiteral("btnCancel"));
    const QPointF middle = button->rect().center();
    for (const QEvent::Type type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, middle, button->mapToGlobal(middle), Qt::LeftButton,
                          type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(button, &event);
    }
}
