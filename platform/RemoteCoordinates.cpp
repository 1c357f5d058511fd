#include "platform/RemoteCoordinates.h"

#include "platform/SessionBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDialog>
#include <QEventLoop>
#include <QPointer>

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

/// A connection of its own for one call, so that a service that appeared since is found. It is made as to any
/// program, and says its first word itself: the library's way to a bus waits for the bus to answer, and ends
/// this program when none does.
class SessionBus {
public:
    SessionBus() : bus_(QDBusConnection::connectToPeer(SessionBusAddress(), Name)) {}
    ~SessionBus() { QDBusConnection::disconnectFromPeer(Name); }
    SessionBus(const SessionBus&) = delete;
    SessionBus& operator=(const SessionBus&) = delete;

    bool IsConnected() const { return bus_.isConnected(); }
    QDBusPendingCall Greet() const {
        const auto bus = QStringLiteral("org.freedesktop.DBus");
        return bus_.asyncCall(QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"),
                                                             bus, QStringLiteral("Hello")));
    }
    QDBusPendingCall Call(const QString& method) const {
        return bus_.asyncCall(QDBusMessage::createMethodCall(Service, ObjectPath, Interface, method),
                              NoTimeLimit);
    }

private:
    static inline const auto Name = QStringLiteral("RemoteCoordinates");
    QDBusConnection bus_;
};

/// A form of which only the cancel button can be used for as long as this lives; afterwards it is as before,
/// with the focus where it was.
class WaitingForm {
public:
    explicit WaitingForm(QDialog& form) : form_(form), focus_(form.focusWidget()) {
        for (QWidget* const child : form.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
            if (child->objectName() == QLatin1String("bCancel") || !child->isEnabledTo(&form))
                continue;
            child->setEnabled(false);
            disabled_.append(child);
        }
        form.setFocus(); // not on the button: an Enter too much must not cancel
        QObject::connect(&form, &QDialog::finished, &guard_, [this] { isLeft_ = true; });
    }
    ~WaitingForm() {
        for (QWidget* const child : disabled_)
            child->setEnabled(true);
        if (focus_ != nullptr)
            focus_->setFocus();
    }
    WaitingForm(const WaitingForm&) = delete;
    WaitingForm& operator=(const WaitingForm&) = delete;

    /// The answer, or nothing when the form was left before it came.
    std::optional<QDBusMessage> AnswerTo(const QDBusPendingCall& call) {
        const QDBusPendingCallWatcher watcher(call);
        QEventLoop untilAnswered;
        QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, &untilAnswered, &QEventLoop::quit);
        QObject::connect(&form_, &QDialog::finished, &untilAnswered, &QEventLoop::quit);
        if (!isLeft_ && !watcher.isFinished())
            untilAnswered.exec();
        // An application that is being closed ends every event loop.
        if (isLeft_ || !watcher.isFinished())
            return std::nullopt;
        return watcher.reply();
    }

private:
    QDialog& form_;
    QPointer<QWidget> focus_;
    QList<QWidget*> disabled_;
    bool isLeft_ = false;
    QObject guard_; ///< ends the connection
};

bool IsAnswer(const std::optional<QDBusMessage>& message, QLatin1String signature) {
    return message && message->type() == QDBusMessage::ReplyMessage && message->signature() == signature;
}

/// The answer's values; nothing when the call failed, when they are not of this signature, or when the first,
/// the success flag, is false.
std::optional<QVariantList> Ask(QDialog& form, const QString& method, QLatin1String signature) {
    const SessionBus session;
    if (!session.IsConnected())
        return std::nullopt;
    WaitingForm waiting(form);
    if (!IsAnswer(waiting.AnswerTo(session.Greet()), QLatin1String("s")))
        return std::nullopt;
    const std::optional<QDBusMessage> answer = waiting.AnswerTo(session.Call(method));
    if (!IsAnswer(answer, signature) || !answer->arguments().constFirst().toBool())
        return std::nullopt;
    return answer->arguments();
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

std::optional<QuorvantDatum> GetCustomDatum(QDialog& form) {
    const auto answer = Ask(form, QStringLiteral("GetCustomDatum"), QLatin1String("bad"));
    if (!answer)
        return std::nullopt;
    const auto numbers = Numbers<9>(answer->at(1));
    return numbers ? std::optional(QuorvantDatum(*numbers)) : std::nullopt;
}

std::optional<QuorvantGrid> GetCustomGrid(QDialog& form) {
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
