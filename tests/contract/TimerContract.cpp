#include "platform/NSAlert.hpp"
#include "platform/NSPanel.hpp"
#include "platform/Timer.hpp"
#include "tests/contract/Clause.hpp"

#include <algorithm>

namespace contract {
namespace {

using platform::NSAlert;
using platform::NSApplication;
using platform::NSPanel;
using platform::Timer;

class Timers : public Clause {
protected:
    /// Schedules `action`; `interval` in seconds.
    static std::shared_ptr<Timer> once(double interval, std::function<void()> action) {
        return Timer::scheduledTimer(interval, [action = std::move(action)](const auto&) { action(); }, {}, false);
    }

    static std::shared_ptr<Timer> repeatedly(double interval, std::function<void()> action) {
        return Timer::scheduledTimer(interval, [action = std::move(action)](const auto&) { action(); }, {}, true);
    }
};

TEST_F(Timers, AOneShotTimerFiresOnceAndNotBeforeItsInterval) {
    int firings = 0;
    milliseconds begin{};
    milliseconds fired{};
    run([&] {
        begin = driver->uptime();
        once(0.05, [&] {
            ++firings;
            fired = driver->uptime();
        });
        endAfter(150ms);
    });
    EXPECT_EQ(firings, 1);
    EXPECT_GE(fired - begin, 49ms);
}

TEST_F(Timers, ATimerHandsItselfToItsActionWithItsUserInformation) {
    std::shared_ptr<Timer> timer;
    run([&] {
        timer = Timer::scheduledTimer(
            0.01,
            [&](const std::shared_ptr<Timer>& fired) {
                EXPECT_EQ(fired, timer);
                EXPECT_EQ(std::any_cast<std::string>(fired->userInfo()), "why");
                end();
            },
            std::string{"why"}, false);
        EXPECT_EQ(timer->interval(), 0.01);
        EXPECT_FALSE(timer->repeats());
    });
}

TEST_F(Timers, AOneShotTimerIsValidDuringItsActionAndInvalidAfterwards) {
    std::shared_ptr<Timer> timer;
    bool wasValid = false;
    run([&] {
        timer = once(0.01, [&] { wasValid = timer->isValid(); });
        EXPECT_TRUE(timer->isValid());
        endAfter(60ms);
    });
    EXPECT_TRUE(wasValid);
    EXPECT_FALSE(timer->isValid());
}

TEST_F(Timers, ARepeatingTimerFiresUntilItIsInvalidated) {
    std::shared_ptr<Timer> timer;
    int firings = 0;
    run([&] {
        timer = repeatedly(0.02, [&] {
            if (++firings == 3) {
                timer->invalidate();
            }
        });
        endAfter(250ms);
    });
    EXPECT_EQ(firings, 3);
    EXPECT_FALSE(timer->isValid());
}

TEST_F(Timers, AnInvalidatedTimerNeverFires) {
    int firings = 0;
    run([&] {
        const auto timer = once(0.02, [&] { ++firings; });
        timer->invalidate();
        timer->invalidate();
        EXPECT_FALSE(timer->isValid());
        endAfter(80ms);
    });
    EXPECT_EQ(firings, 0);
}

TEST_F(Timers, AnIntervalOfZeroOrLessIsDueAtOnceButNotBeforeTheActionReturns) {
    std::vector<std::string> order;
    run([&] {
        once(-5, [&] { order.emplace_back("negative"); });
        once(0, [&] { order.emplace_back("zero"); });
        order.emplace_back("scheduled");
        endAfter(60ms);
    });
    EXPECT_EQ(order, (std::vector<std::string>{"scheduled", "negative", "zero"}));
}

TEST_F(Timers, TimersFireInTheOrderInWhichTheyFallDue) {
    std::vector<int> order;
    run([&] {
        once(0.09, [&] { order.push_back(3); });
        once(0.03, [&] { order.push_back(1); });
        once(0.06, [&] { order.push_back(2); });
        endAfter(150ms);
    });
    EXPECT_EQ(order, (std::vector<int>{1, 2, 3}));
}

TEST_F(Timers, ALateRepeatingTimerFiresOnceAndKeepsItsPhase) {
    std::vector<milliseconds> firings;
    run([&] {
        repeatedly(0.12, [&] {
            firings.push_back(driver->uptime());
            if (firings.size() == 2) {
                end();
            }
        });
        driver->stall(180ms); // the first is 60 ms late now; the second is due 60 ms from now
    });
    ASSERT_EQ(firings.size(), 2U);
    EXPECT_GT(firings[1] - firings[0], 15ms);
    EXPECT_LT(firings[1] - firings[0], 105ms);
}

TEST_F(Timers, ATimerThatIsInvalidatedWhileItIsDueDoesNotFire) {
    std::shared_ptr<Timer> second;
    std::vector<int> fired;
    run([&] {
        once(0.01, [&] {
            fired.push_back(1);
            second->invalidate();
        });
        second = once(0.02, [&] { fired.push_back(2); });
        driver->stall(50ms);
        endAfter(60ms);
    });
    EXPECT_EQ(fired, (std::vector<int>{1}));
}

TEST_F(Timers, ATimerScheduledByAnActionFiresLater) {
    std::vector<std::string> order;
    run([&] {
        once(0.01, [&] {
            once(0, [&] {
                order.emplace_back("inner");
                end();
            });
            order.emplace_back("outer");
        });
    });
    EXPECT_EQ(order, (std::vector<std::string>{"outer", "inner"}));
}

TEST_F(Timers, OneShotTimersWaitWhileAnAlertIsUp) {
    int firings = 0;
    int firingsWhileUp = -1;
    run([&] {
        once(0.02, [&] { ++firings; });
        driver->onceShown([&] {
            driver->after(100ms, [&] {
                firingsWhileUp = firings;
                driver->pressAlertButton(0);
            });
        });
        NSAlert{}.runModal();
        EXPECT_EQ(firings, 0);
        endAfter(60ms);
    });
    EXPECT_EQ(firingsWhileUp, 0);
    EXPECT_EQ(firings, 1);
}

TEST_F(Timers, OneShotTimersWaitWhileAPanelIsUp) {
    int firings = 0;
    int firingsWhileUp = -1;
    run([&] {
        once(0.02, [&] { ++firings; });
        driver->onceShown([&] {
            driver->after(100ms, [&] {
                firingsWhileUp = firings;
                NSApplication::shared().stopModal();
            });
        });
        NSPanel panel;
        NSApplication::shared().runModal(panel);
        EXPECT_EQ(firings, 0);
        endAfter(60ms);
    });
    EXPECT_EQ(firingsWhileUp, 0);
    EXPECT_EQ(firings, 1);
}

TEST_F(Timers, ATimerNeverFiresInsideItsOwnAction) {
    int depth = 0;
    int deepest = 0;
    int firings = 0;
    run([&] {
        repeatedly(0.02, [&] {
            ++firings;
            deepest = std::max(deepest, ++depth);
            if (firings == 1) {
                driver->onceShown([&] { driver->after(80ms, [&] { driver->pressAlertButton(0); }); });
                NSAlert{}.runModal();
            }
            --depth;
        });
        endAfter(600ms); // a real alert takes its time to come up
    });
    EXPECT_EQ(deepest, 1);
    EXPECT_GE(firings, 2);
}

TEST_F(Timers, ARepeatingTimerGoesOnAfterAnAlert) {
    int firings = 0;
    run([&] {
        repeatedly(0.02, [&] { ++firings; });
        driver->onceShown([&] { driver->pressAlertButton(0); });
        NSAlert{}.runModal();
        firings = 0;
        endAfter(120ms);
    });
    EXPECT_GE(firings, 2);
}

TEST_F(Timers, TheWallClockGoesOn) {
    run([&] {
        const platform::Date begin = platform::Date::now();
        once(0.05, [begin] {
            EXPECT_GE(platform::Date::now() - begin, 0.049);
            end();
        });
    });
}

} // namespace
} // namespace contract
