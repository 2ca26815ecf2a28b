// The run loop: when it settles what has changed, how often and how punctually it wakes, and what becomes of work
// at its end.

#include "platform/linux/EventLoop.hpp"

#include "tests/support/BareDesktop.hpp"

#include <glib-unix.h>
#include <gtest/gtest.h>
#include <sys/eventfd.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

/// How late the kernel may end a wait of this thread.
std::chrono::nanoseconds slack() { return std::chrono::nanoseconds{prctl(PR_GET_TIMERSLACK)}; }

std::function<void()> insteadOfWaiting; // if that is set

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" int __real_g_poll(GPollFD* descriptors, unsigned count, int milliseconds);
extern "C" int __wrap_g_poll(GPollFD* descriptors, unsigned count, int milliseconds) {
    if (!insteadOfWaiting) {
        return __real_g_poll(descriptors, count, milliseconds);
    }
    insteadOfWaiting();
    return 0;
}
// NOLINTEND(bugprone-reserved-identifier)

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

TEST(Loop, TakesTurnsWithOthersHoweverMuchIsPosted) {
    EventLoop loop{[] { return RunLoopMode::Default; }, [] {}};
    const std::function<void()> goOn = [&] { loop.post(goOn); };
    loop.post(goOn);
    bool hadItsTurn = false;
    const auto takeTurn = [](gpointer turn) -> gboolean {
        *static_cast<bool*>(turn) = true;
        return G_SOURCE_REMOVE;
    };
    g_idle_add_full(G_PRIORITY_DEFAULT, takeTurn, &hadItsTurn, nullptr);
    loop.iterate();
    loop.iterate();
    EXPECT_TRUE(hadItsTurn);
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
    g_main_context_iteration(nullptr, FALSE); // a thread of another test may have asked for a turn
    int settlings = 0;
    EventLoop loop{[] { return RunLoopMode::Default; }, [&] { ++settlings; }};
    bool hasFired = false;
    const auto timer =
        Timer::scheduledTimer(0.0305, [&](const std::shared_ptr<Timer>&) { hasFired = true; }, {}, false);
    loop.schedule(timer);
    loop.iterate();
    EXPECT_TRUE(hasFired) << "it woke too early";
    EXPECT_EQ(settlings, 1);
}

/// A loop with timers, and how punctual its next wait is meant to be.
class PunctualLoop : public testing::Test {
protected:
    void schedule(double seconds, bool repeats, const std::function<void()>& action = [] {}) {
        loop.schedule(
            Timer::scheduledTimer(seconds, [action](const std::shared_ptr<Timer>&) { action(); }, {}, repeats));
    }
    void tickEverySecond() { schedule(1, true); }
    void breakIn(double seconds) { schedule(seconds, false); }

    std::chrono::nanoseconds slackOfNextWait() {
        std::optional<std::chrono::nanoseconds> found;
        insteadOfWaiting = [&] { found = slack(); };
        loop.iterate();
        insteadOfWaiting = nullptr;
        EXPECT_EQ(slack(), usual) << "for what is done after a wait that no tick has ended";
        return found.value();
    }

    std::function<void()> noteSlack = [this] { noted = slack(); };
    std::optional<std::chrono::nanoseconds> noted;

    /// Goes on until something has noted the slack. The first wait lasts until all that there is has fallen due.
    std::optional<std::chrono::nanoseconds> slackNotedAfterALongWait() {
        insteadOfWaiting = [] { std::this_thread::sleep_for(30ms); };
        loop.iterate();
        insteadOfWaiting = nullptr;
        for (int turn = 0; turn < 3 && !noted; ++turn) {
            loop.iterate();
        }
        return noted;
    }

    const BareDesktop desktop{"none"};
    const std::chrono::nanoseconds usual = slack();
    RunLoopMode mode = RunLoopMode::Default;
    EventLoop loop{[this] { return mode; }, [] {}};
};

TEST_F(PunctualLoop, LetsTheTickWaitForAnotherWakeUpOfTheMachine) {
    tickEverySecond();
    EXPECT_EQ(slackOfNextWait(), 50ms);
}

TEST_F(PunctualLoop, IsExactForABreakAheadOfTheTick) {
    tickEverySecond();
    breakIn(0.5);
    EXPECT_EQ(slackOfNextWait(), usual);
}

TEST_F(PunctualLoop, IsExactForABreakSoonAfterTheTick) {
    breakIn(1.02);
    tickEverySecond();
    EXPECT_LE(slackOfNextWait(), 20ms);
}

TEST_F(PunctualLoop, LetsTheTickWaitWhileAWindowHoldsUpTheBreak) {
    tickEverySecond();
    breakIn(0.5);
    mode = RunLoopMode::Modal;
    EXPECT_EQ(slackOfNextWait(), 50ms);
}

TEST_F(PunctualLoop, IsExactForWhatIsNoTimerOfItsOwn) {
    tickEverySecond();
    const unsigned other = g_timeout_add(500, [](gpointer) -> gboolean { return G_SOURCE_REMOVE; }, nullptr);
    EXPECT_EQ(slackOfNextWait(), usual);
    g_source_remove(other);
}

TEST_F(PunctualLoop, LeavesTheToleranceInForceFromOneTickToTheNext) {
    schedule(0.01, true, noteSlack);
    EXPECT_EQ(slackNotedAfterALongWait(), 500us);
    EXPECT_EQ(slack(), 500us);
}

TEST_F(PunctualLoop, HasTheUsualToleranceForABreakThatIsDueTogetherWithATick) {
    schedule(0.01, true);
    schedule(0.02, false, noteSlack);
    EXPECT_EQ(slackNotedAfterALongWait(), usual);
}

TEST_F(PunctualLoop, HasTheUsualToleranceForWorkThatATickHasPosted) {
    schedule(0.01, true, [this] { loop.post(noteSlack); });
    EXPECT_EQ(slackNotedAfterALongWait(), usual);
}

TEST_F(PunctualLoop, HasTheUsualToleranceForWhatIsDueTogetherWithATickAndIsNoneOfItsOwn) {
    schedule(0.01, true);
    const auto note = [](gpointer self) -> gboolean {
        (*static_cast<std::function<void()>*>(self))();
        return G_SOURCE_REMOVE;
    };
    g_timeout_add(20, note, &noteSlack);
    EXPECT_EQ(slackNotedAfterALongWait(), usual);
}

TEST_F(PunctualLoop, HasTheUsualToleranceForWhatComesFromOutside) {
    tickEverySecond();
    const int readable = eventfd(1, EFD_CLOEXEC);
    const auto note = [](int, GIOCondition, gpointer self) -> gboolean {
        (*static_cast<std::function<void()>*>(self))();
        return G_SOURCE_REMOVE;
    };
    g_unix_fd_add(readable, G_IO_IN, note, &noteSlack);
    loop.iterate();
    EXPECT_EQ(noted, usual);
    close(readable);
}

TEST_F(PunctualLoop, HasTheUsualToleranceOnceItIsOver) {
    schedule(0.01, true, [this] { loop.quit(); });
    loop.run();
    EXPECT_EQ(slack(), usual);
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
