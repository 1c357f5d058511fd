#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

#include <atomic>
#include <optional>
#include <thread>

class QDialog;

/// Watches one long operation behind the progress dialog from the event loop's side, and presses Cancel in
/// its middle as a person would: at a moment that has nothing to do with the events of the program.
class OperationWatch : public QObject {
public:
    OperationWatch();
    ~OperationWatch() override;

    struct Result {
        double whole = 0;      ///< from Begin to End
        double longestGap = 0; ///< without any event being handled
        int values = 0;        ///< amounts of progress that were shown
        double cancel = 0;     ///< from the press of Cancel until the dialog was gone; 0: not cancelled
    };

    /// The user's last click before the operation has been made. With a fraction, Cancel is pressed once so
    /// much of the bar is filled.
    void Begin(std::optional<double> cancelAt);
    /// The user can go on.
    Result End();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Tick();
    void Follow(QDialog& dialog);
    void PressWhen(double fraction);
    void Press();
    double Now() const { return static_cast<double>(clock_.nsecsElapsed()) / 1e6; }

    QElapsedTimer clock_;
    QTimer ticker_;
    QPointer<QDialog> dialog_;
    std::jthread presser_;
    std::atomic<double> fraction_{0};
    std::atomic<double> pressed_{0};
    bool running_ = false;
    double begun_ = 0;
    double lastTick_ = 0;
    Result result_;
};
