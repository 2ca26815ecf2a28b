// The run loop: when it settles what has changed, how often it wakes, and what becomes of work at its end.

#include "platform/linux/EventLoop.hpp"

#include "tests/support/BareDesktop.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace platform::linux {
namespace {

TEST(Loop, LetsGoOfWhatIsLeftUndoneAtItsEnd) {
    EventLoop loop{[] { return RunLoopMode::Default; }, [] {}};
    bool isDone = false;
    auto waiting = std::make_shared<int>();
    const std::weak_ptr<int> caller = waiting;
    loop.post([&] { loop.quit(); });
    loop.post([&isDone, waiting = std::move(waiting)] { isDone = true; });
    loop.run();
    EXPECT_TRUE(caller.expired()) << "it waits for an answer still";
    EXPECT_FALSE(isDone);
}

TEST(Loop, SettlesOnceMoreIfThatIsAskedForWhileItSettles) {
    int settlings = 0;
    EventLoop* running = nullptr;
    EventLoop loop{[] { return RunLoopMode::Default; },
                   [&] {
                       if (++settlings == 1) {
                           running->settleSoon();
                       } else {
                           running->quit();
                       }
                   }};
    running = &loop;
    loop.settleSoon();
    loop.run();
    EXPECT_EQ(settlings, 2);
}

TEST(Loop, WakesOnceForOneTimer) {
    const BareDesktop desktop{"none"};
    int settlings = 0;
    EventLoop loop{[] { return RunLoopMode::Default; }, [&] { ++settlings; }};
    bool hasFired = false;
    const auto timer = Timer::scheduledTimer(
        0.0305, [&](const std::shared_ptr<Timer>&) { hasFired = true; }, {}, false);
    loop.schedule(timer);
    loop.iterate();
    EXPECT_TRUE(hasFired) << "it woke too early";
    EXPECT_EQ(settlings, 1);
}

TEST(Loop, BeginsAnEventAheadOfItsTimers) {
    const BareDesktop desktop{"none"};
    bool hasBegun = false;
    EventLoop loop{[] { return RunLoopMode::Default; }, [] {}, [&] { hasBegun = true; }};
    bool hasFired = false;
    const auto timer = Timer::scheduledTimer(
        0.001,
        [&](const std::shared_ptr<Timer>&) {
            hasFired = true;
            EXPECT_TRUE(hasBegun);
        },
        {}, false);
    loop.schedule(timer);
    loop.iterate();
    EXPECT_TRUE(hasFired);
}

} // namespace
} // namespace platform::linux
