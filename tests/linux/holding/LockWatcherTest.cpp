// For how long the session was locked, by whoever tells of it.

#include "platform/linux/holding/LockWatcher.hpp"

#include "platform/linux/holding/BusQuestions.hpp"
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

VariantHandle askBus(GDBusConnection* from, const char* method, GVariant* arguments = nullptr) {
    return call(from, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method, arguments);
}

/// Once the bus has answered, it has also read who listens and what was said, and what it sent before has come.
void awaitBus(GDBusConnection* of) { ASSERT_TRUE(askBus(of, "GetId")); }

/// A service that locks the screen.
class ScreenSaver {
public:
    ScreenSaver(GDBusConnection* listener, std::string name)
        : _listener{listener}
        , _name{std::move(name)} {
        takeName(_bus.get(), _name.c_str());
        awaitBus(_listener);
    }

    void tell(GVariant* arguments) const {
        std::string path = "/" + _name;
        std::replace(path.begin(), path.end(), '.', '/');
        g_dbus_connection_emit_signal(_bus.get(), nullptr, path.c_str(), _name.c_str(), "ActiveChanged", arguments,
                                      nullptr);
        awaitBus(_bus.get());
        awaitBus(_listener);
    }
    void lock() const { tell(g_variant_new("(b)", TRUE)); }
    void unlock() const { tell(g_variant_new("(b)", FALSE)); }
    void die() const {
        g_dbus_connection_close_sync(_bus.get(), nullptr, nullptr);
        ASSERT_TRUE(runLoopUntil([&] { return !hasOwner(); }));
    }

private:
    bool hasOwner() const {
        return saysYes(askBus(_listener, "NameHasOwner", g_variant_new("(s)", _name.c_str())).get());
    }

    GDBusConnection* _listener;
    ObjectHandle<GDBusConnection> _bus = connectToSession();
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
    const ScreenSaver locker{bus.get(), GetParam()};
    locker.lock();
    now += 300;
    locker.lock();
    EXPECT_THAT(unlocked, IsEmpty());
    locker.unlock();
    locker.unlock();
    EXPECT_THAT(unlocked, ElementsAre(300));
}

TEST_P(Lockers, UnlockWhenTheyDie) {
    const ScreenSaver locker{bus.get(), GetParam()};
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
    const ScreenSaver first{bus.get(), "org.freedesktop.ScreenSaver"};
    const ScreenSaver second{bus.get(), "org.gnome.ScreenSaver"};
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
    const ScreenSaver locker{bus.get(), "org.gnome.ScreenSaver"};
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
    awaitBus(systemBus.get());
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
        awaitBus(manager.bus());
        awaitBus(systemBus.get());
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
