#pragma once

#include <QObject>

/// Keeps the wheel from changing a control that has not the focus: a scroll over a list must not choose.
class WheelGuard : public QObject {
public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
