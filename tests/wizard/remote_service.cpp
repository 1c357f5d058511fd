// A program that defines datums and grids, for tests. It takes the service's name on the session bus, prints
// "ready", and answers as its one argument says:
//   good       at once
//   slow       half a second after the call
//   cancelled  with success false
//   short      with eight numbers for a datum and six for a grid
//   strange    with a text
//   infinite   with a number that is not finite
//   unknown    with a projection that there is not
//   once       at once, and from the second call on with success false
//   hanging    not at all
//   quit       not at all: it ends when it is called

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QTimer>

#include <cstdio>
#include <limits>

namespace {

QList<double> Datum(const QString& mode) {
    QList<double> numbers{6377563.396, 0.00667054, 446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489};
    if (mode == QLatin1String("short"))
        numbers.removeLast();
    if (mode == QLatin1String("infinite"))
        numbers[2] = std::numeric_limits<double>::infinity();
    return numbers;
}

QVariantList Answer(const QString& method, const QString& mode) {
    if (mode == QLatin1String("strange"))
        return {QStringLiteral("yes")};
    QVariantList answer{mode != QLatin1String("cancelled"), QVariant::fromValue(Datum(mode))};
    if (method == QLatin1String("GetCustomGrid")) {
        QList<double> values{49, -2, 0.9996012717, 400000, -100000, 0, 0};
        if (mode == QLatin1String("short"))
            values.removeLast();
        answer << (mode == QLatin1String("unknown") ? 99 : 1) << 7 << QVariant::fromValue(values)
               << QStringLiteral("My grid");
    }
    return answer;
}

class Remote : public QDBusVirtualObject {
public:
    explicit Remote(QString mode) : mode_(std::move(mode)) {}

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        if (mode_ == QLatin1String("hanging"))
            return true;
        if (mode_ == QLatin1String("quit")) {
            QCoreApplication::exit();
            return true;
        }
        const auto answer = [this, call, bus] { bus.send(call.createReply(Answer(call.member(), mode_))); };
        QTimer::singleShot(mode_ == QLatin1String("slow") ? 500 : 0, answer);
        if (mode_ == QLatin1String("once"))
            QTimer::singleShot(0, [this] { mode_ = QStringLiteral("cancelled"); });
        return true;
    }

private:
    QString mode_;
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    Remote remote(QString::fromLocal8Bit(argc > 1 ? argv[1] : "good"));
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerVirtualObject(QStringLiteral("/NarvoquistRemote/clsRemote"), &remote) ||
        !bus.registerService(QStringLiteral("NarvoquistRemote.clsRemote")))
        return 1;
    std::puts("ready");
    std::fflush(stdout);
    return QCoreApplication::exec();
}
