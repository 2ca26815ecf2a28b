// Waking, as the login manager tells it over a system bus that may be missing, late or broken.

#include "platform/linux/WakeWatcher.hpp"

#include "tests/support/MisbehavingBus.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <utility>

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
        watcher.emplace([this] { ++wakes; });
        awaitListenerForSleep();
    }

    /// Begins to watch, and runs the main loop until `isTried`, while the system bus is said to be at `address`.
    void watchAt(const std::string& address, const std::function<bool()>& isTried) {
        constexpr const char* variable = "DBUS_SYSTEM_BUS_ADDRESS";
        const std::string before = g_getenv(variable);
        g_setenv(variable, address.c_str(), TRUE);
        watcher.emplace([this] { ++wakes; });
        EXPECT_TRUE(runLoopUntil(isTried));
        g_setenv(variable, before.c_str(), TRUE);
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

TEST_F(Waking, MayBeWithoutASystemBus) {
    watchAt("unix:path=/nonexistent", [] { return true; });
    runLoopFor(50ms);
    EXPECT_EQ(wakes, 0);
}

TEST_F(Waking, IsLetGoOfWithoutComplaintAfterTheSystemBusHasGone) {
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_FATAL_MASK | G_LOG_LEVEL_CRITICAL));
    watch();
    stopSystemBus();
    runLoopFor(50ms);
    watcher.reset();
    startSystemBus();
}

TEST_F(Waking, MayBeForgottenBeforeTheSystemBusAnswers) {
    watcher.emplace([this] { ++wakes; });
    watcher.reset();
    runLoopFor(50ms);
    EXPECT_EQ(wakes, 0);
}

/// Notes the longest time for which the main loop was kept from running.
class Stopwatch {
public:
    Stopwatch() {
        const auto tick = [](gpointer self) -> gboolean {
            static_cast<Stopwatch*>(self)->tick();
            return G_SOURCE_CONTINUE;
        };
        _source = g_timeout_add(5, tick, this);
    }
    ~Stopwatch() { g_source_remove(_source); }
    Stopwatch(const Stopwatch&) = delete;
    Stopwatch& operator=(const Stopwatch&) = delete;

    std::chrono::microseconds longestTurn() {
        tick();
        return _longest;
    }

private:
    void tick() {
        const std::chrono::microseconds now{g_get_monotonic_time()};
        _longest = std::max(_longest, now - std::exchange(_last, now));
    }

    std::chrono::microseconds _last{g_get_monotonic_time()};
    std::chrono::microseconds _longest{0};
    unsigned _source;
};

using Step = MisbehavingBus::Step;
using Trouble = MisbehavingBus::Trouble;

class WakingOverABadBus : public Waking, public testing::WithParamInterface<std::tuple<Step, Trouble>> {};

TEST_P(WakingOverABadBus, KeepsNothingWaiting) {
    const auto [step, trouble] = GetParam();
    Stopwatch stopwatch;
    const MisbehavingBus bad{step, trouble};
    watchAt(bad.address(), [&] { return bad.isInTrouble(); });
    runLoopFor(50ms);
    if (trouble == Trouble::Lateness) {
        EXPECT_TRUE(runLoopUntil([&] { return wakes == 1; })) << "late is not too late";
    }
    EXPECT_LT(stopwatch.longestTurn(), 3s);
}

TEST_P(WakingOverABadBus, CanBeForgottenAtAnyStep) {
    const auto [step, trouble] = GetParam();
    Stopwatch stopwatch;
    const MisbehavingBus bad{step, trouble};
    watchAt(bad.address(), [&] { return bad.isInTrouble(); });
    watcher.reset();
    EXPECT_LT(stopwatch.longestTurn(), 3s);
}

INSTANTIATE_TEST_SUITE_P(
    AtEachStep, WakingOverABadBus,
    testing::Combine(testing::Values(Step::Greeting, Step::Hello, Step::Subscription, Step::Signal),
                     testing::Values(Trouble::Silence, Trouble::Lateness, Trouble::Nonsense, Trouble::Death)));

} // namespace
} // namespace platform::linux
