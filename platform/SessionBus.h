#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>
#include <optional>

/// Where the session bus is, as every program on it finds out. The D-Bus library itself remembers for ever
/// where it found the first one.
QString SessionBusAddress();

/// Whether whoever listens at the address says nothing for so long. A bus that is not there is not silent,
/// nor is one that is not reached by a socket of this machine.
bool IsSilentBus(const QString& address, std::chrono::milliseconds patience);

/// Keeps Qt from a session bus that does not answer: it asks for accessibility there, and for more on some
/// desktops, and waits without end, so that no window would ever appear. To be made before the application
/// object and ended after it. Then the variable with the address is again what it was, but Qt does without.
class SilentBusGuard {
public:
    static constexpr std::chrono::seconds Patience{5};

    explicit SilentBusGuard(std::chrono::milliseconds patience = Patience);
    ~SilentBusGuard();
    SilentBusGuard(const SilentBusGuard&) = delete;
    SilentBusGuard& operator=(const SilentBusGuard&) = delete;

private:
    bool isSilent_;
    std::optional<QByteArray> address_;
};
