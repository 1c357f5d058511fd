#include "platform/RemoteCoordinates.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QEventLoop>
#include <QPointer>
#include <QWidget>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

const auto Service = QStringLiteral("NarvoquistRemote.clsRemote");
const auto ObjectPath = QStringLiteral("/NarvoquistRemote/clsRemote");
const auto Interface = Service;

/// libdbus knows this number as "no limit": the other program's dialog may stay open for hours.
constexpr int NoTimeLimit = std::numeric_limits<int>::max();

/// The D-Bus library remembers for ever where it found its first session bus; a bus that is named in the
/// environment is gone to directly.
QDBusConnection Connect(const QString& name) {
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    return address.isEmpty() ? QDBusConnection::connectToBus(QDBusConnection::SessionBus, name)
                             : QDBusConnection::connectToBus(address, name);
}

/// A connection of its own for one call, so that a service that appeared since is found.
class SessionBus {
public:
    SessionBus() : bus_(Connect(Name)) {}
    ~SessionBus() { QDBusConnection::disconnectFromBus(Name); }
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    QDBusConnection& Bus() { return bus_; }

private:
    static inline const auto Name = QStringLiteral("RemoteCoordinates");
    QDBusConnection bus_;
};

/// A form that takes no input for as long as this lives; afterwards the focus is where it was.
class DisabledForm {
public:
    explicit DisabledForm(QWidget& form) : form_(form), focus_(form.focusWidget()) {
        form_.setEnabled(false);
    }
    ~DisabledForm() {
        form_.setEnabled(true);
        if (focus_ != nullptr)
            focus_->setFocus();
    }
    DisabledForm(const DisabledForm&) = delete;
    DisabledForm& operator=(const DisabledForm&) = delete;

private:
    QWidget& form_;
    QPointer<QWidget> focus_;
};

/// The answer's values; nothing when the call failed, when they are not of this signature, or when the first,
/// the success flag, is false.
std::optional<QVariantList> Ask(QWidget& form, const QString& method, QLatin1String signature) {
    SessionBus session;
    if (!session.Bus().isConnected())
        return std::nullopt;
    const DisabledForm disabled(form);
    const QDBusMessage call = QDBusMessage::createMethodCall(Service, ObjectPath, Interface, method);
    QDBusPendingCallWatcher watcher(session.Bus().asyncCall(call, NoTimeLimit));
    QEventLoop untilAnswered;
    QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &untilAnswered, &QEventLoop::quit);
    if (!watcher.isFinished())
        untilAnswered.exec();
    // An application that is being closed ends every event loop.
    if (!watcher.isFinished())
        return std::nullopt;
    const QDBusMessage answer = watcher.reply();
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != signature ||
        !answer.arguments().constFirst().toBool())
        return std::nullopt;
    return answer.arguments();
}

/// The array of exactly so many finite numbers, or nothing.
template <std::size_t Count>
std::optional<std::array<double, Count>> Numbers(const QVariant& value) {
    const auto list = qdbus_cast<QList<double>>(value);
    if (list.size() != static_cast<qsizetype>(Count) ||
        !std::ranges::all_of(list, [](double number) { return std::isfinite(number); }))
        return std::nullopt;
    std::array<double, Count> numbers{};
    std::ranges::copy(list, numbers.begin());
    return numbers;
}

} // namespace

std::optional<QuorvantDatum> GetCustomDatum(QWidget& form) {
    const auto answer = Ask(form, QStringLiteral("GetCustomDatum"), QLatin1String("bad"));
    if (!answer)
        return std::nullopt;
    const auto numbers = Numbers<9>(answer->at(1));
    return numbers ? std::optional(QuorvantDatum(*numbers)) : std::nullopt;
}

std::optional<QuorvantGrid> GetCustomGrid(QWidget& form) {
    const auto answer = Ask(form, QStringLiteral("GetCustomGrid"), QLatin1String("badiiads"));
    if (!answer)
        return std::nullopt;
    const auto datum = Numbers<9>(answer->at(1));
    const auto values = Numbers<7>(answer->at(4));
    if (!datum || !values)
        return std::nullopt;
    // The name, the last value, is for the other program's own lists: a map keeps numbers.
    const GridNumbers numbers{answer->at(2).toInt(), answer->at(3).toInt(), *values};
    return QuorvantGrid(numbers, QuorvantDatum(*datum));
}
