#pragma once

#include "tests/support/ScopedVariable.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

/// Where a session bus should be: takes every connection that it has room for and never says a word.
class SilentBus {
public:
    explicit SilentBus(int room = 8) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        Path().copy(std::data(address.sun_path), std::size(address.sun_path) - 1);
        EXPECT_EQ(bind(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(listen(socket_, room), 0);
    }
    ~SilentBus() { close(socket_); }
    SilentBus(const SilentBus&) = delete;
    SilentBus& operator=(const SilentBus&) = delete;

    std::string Folder() const { return folder_.Path().string(); }
    std::string Path() const { return (folder_ / "bus").string(); }
    std::string Address() const { return "unix:path=" + Path(); }

private:
    TempFolder folder_;
    int socket_ = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    ScopedVariable variable_{"DBUS_SESSION_BUS_ADDRESS", Address()};
};
