#include "platform/SessionBus.h"

#include <QDBusConnection>
#include <QDeadlineTimer>
#include <QFileInfo>
#include <QUrl>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <string_view>

namespace {

constexpr const char* AddressVariable = "DBUS_SESSION_BUS_ADDRESS";

/// A socket that is closed in the end; nothing on it waits.
class LocalSocket {
public:
    LocalSocket() = default;
    ~LocalSocket() { close(number_); }
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;

    int Number() const { return number_; }
    /// A name that begins with a zero byte is not in the file system.
    int Connect(const QByteArray& name) const {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        if (name.size() >= static_cast<qsizetype>(sizeof address.sun_path))
            return ENAMETOOLONG;
        std::copy(name.begin(), name.end(), std::begin(address.sun_path));
        const bool isFile = !name.startsWith('\0');
        const auto length = offsetof(sockaddr_un, sun_path) + static_cast<std::size_t>(name.size() + isFile);
        const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
        return connect(number_, generic, static_cast<socklen_t>(length)) == 0 ? 0 : errno;
    }

private:
    int number_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
};

/// Where a socket of this machine is, of an address such as "unix:path=/run/bus,guid=1f"; empty for others.
QByteArray SocketName(const QString& address) {
    constexpr QLatin1String kind("unix:");
    if (!address.startsWith(kind))
        return {};
    for (const QString& part : address.mid(kind.size()).split(u',')) {
        const QByteArray value = QByteArray::fromPercentEncoding(part.section(u'=', 1).toLatin1());
        if (part.startsWith(QLatin1String("path=")))
            return value;
        if (part.startsWith(QLatin1String("abstract=")))
            return '\0' + value;
    }
    return {};
}

/// Whether anything can be read, the end included, before the time is over.
bool SaysAnything(int socket, std::chrono::milliseconds patience) {
    const QDeadlineTimer end(patience);
    pollfd answer{socket, POLLIN, 0};
    int ready = -1;
    do
        ready = poll(&answer, 1, static_cast<int>(end.remainingTime()));
    while (ready < 0 && errno == EINTR);
    return ready != 0;
}

} // namespace

QString SessionBusAddress() {
    const QString named = qEnvironmentVariable(AddressVariable);
    if (!named.isEmpty())
        return named;
    const QString socket = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
    if (QFileInfo::exists(socket))
        return QStringLiteral("unix:path=") + QString::fromLatin1(QUrl::toPercentEncoding(socket, "/"));
    return QStringLiteral("autolaunch:");
}

bool IsSilentBus(const QString& address, std::chrono::milliseconds patience) {
    // How each client begins. The answer is a line with the ways to say who one is.
    constexpr std::string_view greeting("\0AUTH\r\n", 7);
    for (const QString& one : address.split(u';')) {
        const QByteArray name = SocketName(one);
        if (name.isEmpty())
            return false; // of other kinds nothing is known
        const LocalSocket socket;
        const int error = socket.Connect(name);
        if (error == EAGAIN)
            return true; // so many wait for it already
        if (error != 0)
            continue;
        send(socket.Number(), greeting.data(), greeting.size(), MSG_NOSIGNAL);
        return !SaysAnything(socket.Number(), patience);
    }
    return false;
}

SilentBusGuard::SilentBusGuard(std::chrono::milliseconds patience)
    : isSilent_(IsSilentBus(SessionBusAddress(), patience)) {
    if (!isSilent_)
        return;
    if (qEnvironmentVariableIsSet(AddressVariable))
        address_ = qgetenv(AddressVariable);
    qputenv(AddressVariable, "disabled:"); // of no known kind, and refused at once
}

SilentBusGuard::~SilentBusGuard() {
    if (!isSilent_)
        return;
    QDBusConnection::sessionBus(); // from now on there is none
    if (address_)
        qputenv(AddressVariable, *address_);
    else
        qunsetenv(AddressVariable);
}
