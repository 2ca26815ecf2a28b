// For how long the session was locked, by whoever tells of it.

#include "platform/linux/holding/LockWatcher.hpp"

#include "tests/support/AnsweringService.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A service that locks the screen.
class ScreenSaver {
public:
    explicit ScreenSaver(std::string name)
        : _name{std::move(name)} {
        takeName(bus.get(), _name.c_str());
    }

    void tell(GVariant* arguments) const {
        std::string path = "/" + _name;
        std::replace(path.begin(), path.end(), '.', '/');
        g_dbus_connection_emit_signal(bus.get(), nullptr, path.c_str(), _name.c_str(), "ActiveChanged", arguments,
                                      nullptr);
        settle();
    }
    void lock() const { tell(g_variant_new("(b)", TRUE)); }
    void unlock() const { tell(g_variant_new("(b)", FALSE)); }
    void die() const {
        g_dbus_connection_close_sync(bus.get(), nullptr, nullptr);
        runLoopFor(std::chrono::milliseconds{50});
    }

    ObjectHandle<GDBusConnection> bus = connectToSession();

private:
    void settle() const { runLoopFor(std::chrono::milliseconds{20}); }

    std::string _name;
};

class Lock : public testing::Test {
protected:
    TimeInterval now = 1000;
    std::vector<TimeInterval> unlocked;
    ObjectHandle<GDBusConnection> bus = connectToSession();
    ObjectHandle<GDBusConnection> systemBus = connectToSystem();
    LockWatcher watcher{bus.get(), [this] { return now; }, [this](TimeInterval span) { unlocked.push_back(span); }};
};

class Lockers : public Lock, public testing::WithParamInterface<const char*> {};

TEST_P(Lockers, TellForHowLong) {
    const ScreenSaver locker{GetParam()};
    locker.lock();
    now += 300;
    locker.lock();
    EXPECT_THAT(unlocked, IsEmpty());
    locker.unlock();
    locker.unlock();
    EXPECT_THAT(unlocked, ElementsAre(300));
}

TEST_P(Lockers, UnlockWhenTheyDie) {
    const ScreenSaver locker{GetParam()};
    locker.lock();
    now += 10;
    locker.die();
    EXPECT_THAT(unlocked, ElementsAre(10));
}

INSTANTIATE_TEST_SUITE_P(All, Lockers,
                         testing::Values("org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver",
                                         "org.cinnamon.ScreenSaver", "org.mate.ScreenSaver",
                                         "org.xfce.ScreenSaver"));

TEST_F(Lock, LastsUntilTheLastOneHasUnlocked) {
    const ScreenSaver first{"org.freedesktop.ScreenSaver"};
    const ScreenSaver second{"org.gnome.ScreenSaver"};
    first.lock();
    now += 1;
    second.lock();
    now += 60;
    first.unlock();
    EXPECT_THAT(unlocked, IsEmpty());
    now += 1;
    second.unlock();
    EXPECT_THAT(unlocked, ElementsAre(62));
}

TEST_F(Lock, IsNotMadeUpOfNonsense) {
    const ScreenSaver locker{"org.gnome.ScreenSaver"};
    locker.tell(g_variant_new("(s)", "true"));
    locker.tell(nullptr);
    locker.unlock();
    EXPECT_THAT(unlocked, IsEmpty());
}

TEST_F(Lock, IsAskedOfTheLoginManagerWhenASessionChanges) {
    AnsweringService manager{connectToSystem(), "org.freedesktop.login1", "/org/freedesktop/login1/session/auto",
                             "Get", "('org.freedesktop.login1.Session', 'LockedHint')"};
    watcher.listenTo(nullptr);
    watcher.listenTo(systemBus.get());
    watcher.listenTo(systemBus.get());
    // once the bus has answered this, it has also read who listens
    ASSERT_TRUE(call(systemBus.get(), "org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetId", nullptr));
    const auto change = [&](const char* hint) {
        manager.say(hint);
        const int calls = manager.calls();
        g_dbus_connection_emit_signal(manager.bus(), nullptr, "/org/freedesktop/login1/session/_32",
                                      "org.freedesktop.DBus.Properties", "PropertiesChanged",
                                      g_variant_new_parsed("('org.freedesktop.login1.Session', @a{sv} {}, @as [])"),
                                      nullptr);
        EXPECT_TRUE(runLoopUntil([&] {
            g_main_context_wakeup(nullptr);
            return manager.calls() == calls + 1;
        }));
        runLoopFor(std::chrono::milliseconds{20});
    };
    change("(<true>,)");
    now += 500;
    change("(<true>,)");
    EXPECT_THAT(unlocked, IsEmpty());
    change("(<false>,)");
    EXPECT_THAT(unlocked, ElementsAre(500));
}

} // namespace
} // namespace platform::linux
