// A screen reader, for stories, with the services of a desktop behind it: on the session bus it says that
// this is the bus for accessibility as well, lets programs register themselves, and asks them for what
// happens to their objects. Of a notice that is newly shown it prints the name. Prints "ready" first, and
// "registered" for each program.

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <cstdio>
#include <functional>

namespace {

/// Who wants to be told of what.
struct Listening {
    QString program;
    QString event;
};

QDBusArgument& operator<<(QDBusArgument& out, const Listening& listening) {
    out.beginStructure();
    out << listening.program << listening.event;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, Listening& listening) {
    in.beginStructure();
    in >> listening.program >> listening.event;
    in.endStructure();
    return in;
}

/// An object of a program.
struct Place {
    QString program;
    QDBusObjectPath path;
};

QDBusArgument& operator<<(QDBusArgument& out, const Place& place) {
    out.beginStructure();
    out << place.program << place.path;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, Place& place) {
    in.beginStructure();
    in >> place.program >> place.path;
    in.endStructure();
    return in;
}

void Print(const QString& line) {
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

} // namespace

Q_DECLARE_METATYPE(Listening)
Q_DECLARE_METATYPE(Place)

namespace {

/// What the programs ask of the desktop.
class Desktop : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        const QString method = call.member();
        if (method == QLatin1String("GetAddress")) {
            bus.send(call.createReply(qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS")));
        } else if (method == QLatin1String("Get")) {
            // Whether anybody needs accessibility, and a reader of the screen.
            bus.send(call.createReply(QVariant::fromValue(QDBusVariant(true))));
        } else if (method == QLatin1String("GetRegisteredEvents")) {
            const QList<Listening> all{{bus.baseService(), QStringLiteral("object:")}};
            bus.send(call.createReply(QVariant::fromValue(all)));
        } else if (method == QLatin1String("NotifyListenersSync")) {
            bus.send(call.createReply(false)); // no key is kept from the program
        } else if (method == QLatin1String("Embed")) {
            const Place root{bus.baseService(), QDBusObjectPath("/org/a11y/atspi/accessible/root")};
            bus.send(call.createReply(QVariant::fromValue(root)));
            Print(QStringLiteral("registered"));
        } else {
            return false;
        }
        return true;
    }
};

class Reader : public QObject {
    Q_OBJECT

public Q_SLOTS:
    void StateChanged(const QDBusMessage& event) {
        if (event.arguments().value(0) != QStringLiteral("showing") ||
            event.arguments().value(1).toInt() != 1)
            return;
        constexpr uint Notification = 101;
        Ask(event, QStringLiteral("org.a11y.atspi.Accessible"), QStringLiteral("GetRole"), {},
            [this, event](const QVariant& role) {
                if (role.toUInt() == Notification)
                    Speak(event);
            });
    }

private:
    void Speak(const QDBusMessage& event) {
        Ask(event, QStringLiteral("org.freedesktop.DBus.Properties"), QStringLiteral("Get"),
            {QStringLiteral("org.a11y.atspi.Accessible"), QStringLiteral("Name")},
            [](const QVariant& name) { Print(qvariant_cast<QDBusVariant>(name).variant().toString()); });
    }
    /// Asks the object that the event is of.
    void Ask(const QDBusMessage& event, const QString& interface, const QString& method,
             const QVariantList& arguments, const std::function<void(const QVariant&)>& take) {
        QDBusMessage call = QDBusMessage::createMethodCall(event.service(), event.path(), interface, method);
        call.setArguments(arguments);
        auto* const watcher =
            new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
        connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, take] {
            watcher->deleteLater();
            take(watcher->reply().arguments().value(0));
        });
    }
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    qDBusRegisterMetaType<Listening>();
    qDBusRegisterMetaType<QList<Listening>>();
    qDBusRegisterMetaType<Place>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    Desktop desktop;
    Reader reader;
    if (!bus.connect({}, {}, QStringLiteral("org.a11y.atspi.Event.Object"), QStringLiteral("StateChanged"),
                     &reader, SLOT(StateChanged(QDBusMessage))) ||
        !bus.registerVirtualObject(QStringLiteral("/org/a11y"), &desktop, QDBusConnection::SubPath) ||
        !bus.registerService(QStringLiteral("org.a11y.atspi.Registry")) ||
        !bus.registerService(QStringLiteral("org.a11y.Bus")))
        return 1;
    Print(QStringLiteral("ready"));
    return QCoreApplication::exec();
}

#include "screen_reader.moc"
