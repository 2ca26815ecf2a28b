// Waking, as the login manager tells it over a system bus that may be missing, come late or break.

#include "platform/linux/WakeWatcher.hpp"

#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gio/gunixsocketaddress.h>
#include <glib-unix.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

/// The login manager, as far as sleep is concerned.
class LoginManager {
public:
    LoginManager() { takeName(_bus.get(), "org.freedesktop.login1"); }

    void tell(bool isGoingToSleep, const char* path = "/org/freedesktop/login1") const {
        g_dbus_connection_emit_signal(_bus.get(), nullptr, path, "org.freedesktop.login1.Manager",
                                      "PrepareForSleep", g_variant_new("(b)", gboolean{isGoingToSleep}), nullptr);
        g_dbus_connection_flush_sync(_bus.get(), nullptr, nullptr);
    }

private:
    ObjectHandle<GDBusConnection> _bus = connectToSystem();
};

class Waking : public testing::Test {
protected:
    void watch() {
        watcher.emplace([this] { ++wakes; }, 1s);
        awaitListenerForSleep();
    }

    /// Begins to watch while the system bus is said to be at another address.
    void watchAt(const std::string& address) {
        constexpr const char* variable = "DBUS_SYSTEM_BUS_ADDRESS";
        const std::string before = g_getenv(variable);
        g_setenv(variable, address.c_str(), TRUE);
        watcher.emplace([this] { ++wakes; }, 1s);
        runLoopFor(50ms);
        g_setenv(variable, before.c_str(), TRUE);
    }

    void expectToHear() {
        const LoginManager manager;
        awaitListenerForSleep();
        manager.tell(false);
        EXPECT_TRUE(runLoopUntil([&] { return wakes == 1; }));
    }

    ObjectHandle<GDBusConnection> bus = connectToSystem();
    int wakes = 0;
    std::optional<WakeWatcher> watcher;
};

TEST_F(Waking, IsToldOncePerSleep) {
    const LoginManager manager;
    watch();
    for (int time = 1; time <= 2; ++time) {
        manager.tell(true);
        manager.tell(false);
        EXPECT_TRUE(runLoopUntil([&] { return wakes == time; }));
    }
    runLoopFor(20ms);
    EXPECT_EQ(wakes, 2);
}

TEST_F(Waking, IsToldByALoginManagerThatComesLateOrRestarts) {
    watch();
    for (int time = 1; time <= 2; ++time) {
        const LoginManager manager;
        manager.tell(false);
        EXPECT_TRUE(runLoopUntil([&] { return wakes == time; }));
    }
}

TEST_F(Waking, IsNotToldByAnybodyElse) {
    watch();
    g_dbus_connection_emit_signal(bus.get(), nullptr, "/org/freedesktop/login1", "org.freedesktop.login1.Manager",
                                  "PrepareForSleep", g_variant_new("(b)", FALSE), nullptr);
    runLoopFor(50ms);
    EXPECT_EQ(wakes, 0);
}

TEST_F(Waking, IsHeardOfOnceThereIsASystemBus) {
    watchAt("unix:path=/nonexistent");
    expectToHear();
}

TEST_F(Waking, IsHeardOfAgainWhenTheSystemBusIsBack) {
    watch();
    stopSystemBus();
    runLoopFor(50ms);
    startSystemBus();
    expectToHear();
}

/// A bus that says no more than a first answer, to each client.
class BrokenBus {
public:
    explicit BrokenBus(std::string answer)
        : _answer{std::move(answer)} {
        const ObjectHandle<GSocketAddress> address{g_unix_socket_address_new(_path.c_str())};
        EXPECT_TRUE(g_socket_bind(_socket.get(), address.get(), TRUE, nullptr));
        EXPECT_TRUE(g_socket_listen(_socket.get(), nullptr));
        const auto cameIn = [](gint, GIOCondition, gpointer data) -> gboolean {
            auto& self = *static_cast<BrokenBus*>(data);
            self._clients.emplace_back(g_socket_accept(self._socket.get(), nullptr, nullptr));
            g_socket_send(self._clients.back().get(), self._answer.data(), self._answer.size(), nullptr, nullptr);
            return G_SOURCE_CONTINUE;
        };
        _source = g_unix_fd_add(g_socket_get_fd(_socket.get()), G_IO_IN, cameIn, this);
    }
    ~BrokenBus() { g_source_remove(_source); }
    BrokenBus(const BrokenBus&) = delete;
    BrokenBus& operator=(const BrokenBus&) = delete;

    std::string address() const { return "unix:path=" + _path; }

private:
    const std::string _answer;
    const TemporaryFolder _folder;
    const std::string _path = _folder.path / "bus";
    ObjectHandle<GSocket> _socket{
        g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, nullptr)};
    std::vector<ObjectHandle<GSocket>> _clients;
    unsigned _source;
};

TEST_F(Waking, IsNotWaitedForOnASystemBusThatNeverAnswers) {
    {
        const BrokenBus silent{""};
        watchAt(silent.address());
    } // from here on it is as good as missing
    expectToHear();
}

TEST_F(Waking, IsNotWaitedForOnASystemBusThatRefusesUs) {
    const BrokenBus refusing{"REJECTED EXTERNAL\r\n"};
    watchAt(refusing.address());
    expectToHear();
}

TEST_F(Waking, IsNotWaitedForOnASystemBusThatBreaksOff) {
    const BrokenBus interrupted{"OK "};
    watchAt(interrupted.address());
    expectToHear();
}

TEST_F(Waking, MayBeForgottenBeforeTheSystemBusAnswers) {
    watchAt("unix:path=/nonexistent");
    watcher.reset();
    watcher.emplace([this] { ++wakes; });
    watcher.reset();
    runLoopFor(50ms);
    EXPECT_EQ(wakes, 0);
}

} // namespace
} // namespace platform::linux
