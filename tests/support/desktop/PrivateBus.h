#pragma once

#include "tests/support/TempFolder.h"

#include <QProcess>
#include <QString>

/// A session bus of the test's own, to which this process is pointed for as long as it lives.
class PrivateBus {
public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    /// Starts the test's service in a mode (see remote_service.cpp) and waits until it has its name.
    void StartService(const QString& mode);

private:
    TempFolder folder_;
    QProcess bus_;
    QProcess service_;
};
