#include "platform/SessionBus.h"

#include "tests/support/desktop/PrivateBus.h"
#include "tests/support/desktop/SilentBus.h"

#include <vector>

namespace {

constexpr std::chrono::milliseconds VeryShort(1);
/// Longer than any of these tests.
constexpr std::chrono::hours VeryLong(1);

bool IsSilent(const std::string& address, std::chrono::milliseconds patience) {
    return IsSilentBus(QString::fromStdString(address), patience);
}

QByteArray Variable() {
    return qgetenv("DBUS_SESSION_BUS_ADDRESS");
}

} // namespace

TEST(SessionBus, IsSilentWhereSomebodyListensAndSaysNothing) {
    const SilentBus bus;
    EXPECT_TRUE(IsSilent(bus.Address(), VeryShort));
    EXPECT_TRUE(IsSilent(bus.Address() + ",guid=00ff", VeryShort));
    EXPECT_TRUE(IsSilent("unix:path=" + bus.Folder() + "/b%75s", VeryShort)) << "percent-encoded";
    EXPECT_TRUE(IsSilent("unix:path=/nowhere/at/all;" + bus.Address(), VeryShort))
        << "the first that is there";
}

TEST(SessionBus, IsSilentAtOnceWhereSoManyWaitThatNobodyIsLetIn) {
    const SilentBus bus(0);
    std::vector<int> waiting;
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    bus.Path().copy(std::data(address.sun_path), std::size(address.sun_path) - 1);
    do
        waiting.push_back(socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    while (connect(waiting.back(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0);
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_TRUE(IsSilent(bus.Address(), VeryLong));
    for (const int number : waiting)
        close(number);
}

TEST(SessionBus, IsNotSilentWhereItAnswersOrIsNotThere) {
    const PrivateBus bus;
    EXPECT_FALSE(IsSilentBus(SessionBusAddress(), VeryLong));
    for (const char* const address :
         {"", "unix:path=/nowhere/at/all", "unix:path=", "unix:abstract=quorvant-no-bus", "unix:tmpdir=/tmp",
          "autolaunch:", "disabled:", "tcp:host=localhost,port=1", ";;"})
        EXPECT_FALSE(IsSilent(address, VeryLong)) << address;
    EXPECT_FALSE(IsSilent("unix:path=/" + std::string(200, 'x'), VeryLong))
        << "longer than any socket's name";
}

TEST(SessionBus, IsKeptFromTheToolkitWhileItIsSilentAndNamedAsBeforeAfterwards) {
    const SilentBus bus;
    {
        const SilentBusGuard guard(VeryShort);
        EXPECT_EQ(Variable(), "disabled:");
    }
    EXPECT_EQ(Variable().toStdString(), bus.Address());
    // One that is known by its place alone.
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    const ScopedVariable place("XDG_RUNTIME_DIR", bus.Folder());
    {
        const SilentBusGuard guard(VeryShort);
        EXPECT_EQ(Variable(), "disabled:");
    }
    EXPECT_FALSE(qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS"));
}

TEST(SessionBus, IsLeftToTheToolkitWhenItAnswers) {
    const PrivateBus bus;
    const QByteArray address = Variable();
    const SilentBusGuard guard(VeryLong);
    EXPECT_EQ(Variable(), address);
}
