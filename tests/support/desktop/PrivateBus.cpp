#include "tests/support/desktop/PrivateBus.h"

#include <gtest/gtest.h>

namespace {

constexpr int Patience = 30000; // milliseconds; nothing here depends on how fast a machine is

void End(QProcess& process) {
    process.terminate();
    if (!process.waitForFinished(Patience))
        process.kill();
}

/// Waits for the first line that the process prints.
QByteArray FirstLine(QProcess& process) {
    while (!process.canReadLine() && process.waitForReadyRead(Patience))
        continue;
    return process.readLine().trimmed();
}

} // namespace

PrivateBus::PrivateBus() {
    const QString address = QStringLiteral("unix:path=") + QString::fromStdString((folder_ / "bus").string());
    bus_.start(QStringLiteral("dbus-daemon"),
               {QStringLiteral("--session"), QStringLiteral("--nofork"), QStringLiteral("--print-address"),
                QStringLiteral("--address=") + address});
    const QByteArray listening = FirstLine(bus_);
    EXPECT_FALSE(listening.isEmpty()) << "dbus-daemon does not start";
    qputenv("DBUS_SESSION_BUS_ADDRESS", listening);
}

PrivateBus::~PrivateBus() {
    End(service_);
    End(bus_);
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

void PrivateBus::StartService(const QString& mode) {
    service_.start(QStringLiteral(BUILD_DIR "/tests/remote_service"), {mode});
    EXPECT_EQ(FirstLine(service_).toStdString(), "ready");
}
