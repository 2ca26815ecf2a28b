#include "platform/Logger.hpp"
#include "platform/NSAlert.hpp"
#include "platform/NSWorkspace.hpp"
#include "platform/Timer.hpp"
#include "tests/contract/Clause.hpp"

namespace contract {
namespace {

using platform::NotificationCenter;
using platform::NSWorkspace;

constexpr auto wake = NotificationCenter::Name::NSWorkspaceDidWakeNotification;

class TheApplication : public Clause {};
class Wakes : public Clause {};

TEST_F(TheApplication, RunsUntilItIsTerminated) {
    bool hasRunOn = false;
    run([&] {
        driver->after(50ms, [&] {
            hasRunOn = true;
            end();
        });
    });
    EXPECT_TRUE(hasRunOn);
}

TEST_F(TheApplication, CanBeTerminatedWhileItLaunches) {
    run([&] { end(); });
}

TEST_F(TheApplication, CanBeTerminatedByATimer) {
    run([&] { platform::Timer::scheduledTimer(0.01, [](const auto&) { end(); }, {}, false); });
}

TEST_F(TheApplication, CanBeBroughtToTheFrontAtAnyTime) {
    runToEnd([] {
        platform::NSApplication::shared().activate(true);
        platform::NSRunningApplication::current().activate(
            platform::NSRunningApplication::ActivateIgnoringOtherApps);
    });
}

TEST_F(Wakes, AreToldToEveryObserverInOrder) {
    std::vector<int> told;
    run([&] {
        auto& center = NSWorkspace::shared().notificationCenter();
        center.addObserver(&told, [&] { told.push_back(1); }, wake);
        center.addObserver(&told, [&] { told.push_back(2); }, wake);
        driver->after(10ms, [&] { driver->wakeMachine(); });
        endAfter(100ms);
    });
    EXPECT_EQ(told, (std::vector<int>{1, 2}));
}

TEST_F(Wakes, AreNotToldToObserversThatWereRemoved) {
    std::vector<int> told;
    const int other = 0;
    run([&] {
        auto& center = NSWorkspace::shared().notificationCenter();
        center.addObserver(&told, [&] { told.push_back(1); }, wake);
        center.addObserver(&other, [&] { told.push_back(2); }, wake);
        center.removeObserver(&told);
        driver->after(10ms, [&] { driver->wakeMachine(); });
        endAfter(100ms);
    });
    EXPECT_EQ(told, (std::vector<int>{2}));
}

TEST_F(Wakes, AreToldWhileAnAlertIsUp) {
    bool wasTold = false;
    bool wasToldWhileUp = false;
    run([&] {
        NSWorkspace::shared().notificationCenter().addObserver(&wasTold, [&] { wasTold = true; }, wake);
        driver->onceShown([&] {
            driver->wakeMachine();
            driver->after(80ms, [&] {
                wasToldWhileUp = wasTold;
                driver->pressAlertButton(0);
            });
        });
        platform::NSAlert{}.runModal();
        end();
    });
    EXPECT_TRUE(wasToldWhileUp);
}

} // namespace
} // namespace contract
