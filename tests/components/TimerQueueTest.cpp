#include "platform/TimerQueue.hpp"

#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using platform::RepeatingTimersDuringModal;
using platform::RunLoopMode;
using platform::Timer;
using platform::TimerQueue;

/// A queue of its own, beside the desktop's.
class AQueue : public Bench {
protected:
    TimerQueue queue{RepeatingTimersDuringModal::Wait};
    TimerQueue firing{RepeatingTimersDuringModal::Fire};
    std::vector<std::string> fired;

    std::shared_ptr<Timer> timer(double interval, const std::string& name, bool repeats = false) {
        return Timer::scheduledTimer(
            interval,
            [this, name](const std::shared_ptr<Timer>& self) {
                fired.push_back(name);
                removeIfDone(*self);
            },
            {}, repeats);
    }

    /// What the desktop does with its own queue.
    void removeIfDone(const Timer& timer) {
        if (!timer.repeats()) {
            queue.remove(timer);
            firing.remove(timer);
        }
    }
};

TEST_F(AQueue, FiresWhatIsDueInTheOrderInWhichItFellDue) {
    queue.add(timer(3, "third"), 0s);
    queue.add(timer(1, "first"), 0s);
    queue.add(timer(2, "second"), 0s);
    EXPECT_EQ(queue.nextDue(RunLoopMode::Default), 1s);
    EXPECT_FALSE(queue.fireDue(999ms, RunLoopMode::Default));
    EXPECT_TRUE(queue.fireDue(5s, RunLoopMode::Default));
    EXPECT_EQ(fired, (std::vector<std::string>{"first", "second", "third"}));
}

TEST_F(AQueue, KeepsTheOrderOfSchedulingAmongThoseDueAtOnce) {
    queue.add(timer(1, "a"), 0s);
    queue.add(timer(1, "b"), 0s);
    queue.fireDue(1s, RunLoopMode::Default);
    EXPECT_EQ(fired, (std::vector<std::string>{"a", "b"}));
}

TEST_F(AQueue, TellsOfADueTimerThatFiresOnlyOnce) {
    firing.add(timer(1, "tick", true), 0s);
    firing.add(timer(2, "break"), 0s);
    EXPECT_FALSE(firing.isOneShotDue(1999ms, RunLoopMode::Default));
    EXPECT_TRUE(firing.isOneShotDue(2s, RunLoopMode::Default));
    EXPECT_FALSE(firing.isOneShotDue(2s, RunLoopMode::Modal)) << "it may not fire";
}

TEST_F(AQueue, ToleratesThatARepeatingTimerIsLateAndNoOther) {
    EXPECT_EQ(firing.tolerance(RunLoopMode::Default), 0ms);
    firing.add(timer(1, "tick", true), 0s);
    EXPECT_EQ(firing.tolerance(RunLoopMode::Default), 50ms);
    firing.add(timer(1, "soon after"), 30ms);
    EXPECT_EQ(firing.tolerance(RunLoopMode::Default), 30ms);
    firing.add(timer(1, "at once"), 0s);
    EXPECT_EQ(firing.tolerance(RunLoopMode::Default), 0ms);
    EXPECT_EQ(firing.tolerance(RunLoopMode::Modal), 50ms) << "only the tick fires";
}

TEST_F(AQueue, FiresALateRepeatingTimerOnceAndKeepsItsPhase) {
    queue.add(timer(1, "tick", true), 500ms);
    EXPECT_EQ(queue.nextDue(RunLoopMode::Default), 1500ms);
    EXPECT_TRUE(queue.fireDue(7700ms, RunLoopMode::Default));
    EXPECT_EQ(fired.size(), 1U);
    EXPECT_EQ(queue.nextDue(RunLoopMode::Default), 8500ms);
}

TEST_F(AQueue, NeverLosesTheTick) {
    queue.add(timer(0.1, "tick", true), 0s); // a tenth of a second is no binary fraction
    for (TimerQueue::Instant now = 0s; now <= 24h; now += 100ms) {
        queue.fireDue(now, RunLoopMode::Default);
    }
    EXPECT_EQ(fired.size(), 864000U);
    EXPECT_EQ(queue.nextDue(RunLoopMode::Default), 24h + 100ms);
}

TEST_F(AQueue, HoldsOneShotTimersBackDuringModalRuns) {
    queue.add(timer(1, "once"), 0s);
    firing.add(timer(1, "once too"), 0s);
    EXPECT_EQ(queue.nextDue(RunLoopMode::Modal), std::nullopt);
    EXPECT_EQ(firing.nextDue(RunLoopMode::Modal), std::nullopt);
    EXPECT_FALSE(queue.fireDue(5s, RunLoopMode::Modal));
    EXPECT_FALSE(firing.fireDue(5s, RunLoopMode::Modal));
    EXPECT_TRUE(queue.fireDue(5s, RunLoopMode::Default));
    EXPECT_TRUE(firing.fireDue(5s, RunLoopMode::Default));
}

TEST_F(AQueue, HoldsRepeatingTimersBackDuringModalRunsUnlessToldOtherwise) {
    queue.add(timer(1, "waits", true), 0s);
    firing.add(timer(1, "fires", true), 0s);
    EXPECT_FALSE(queue.fireDue(5s, RunLoopMode::Modal));
    EXPECT_TRUE(firing.fireDue(5s, RunLoopMode::Modal));
    EXPECT_EQ(fired, std::vector<std::string>{"fires"});
    EXPECT_EQ(queue.nextDue(RunLoopMode::Modal), std::nullopt);
    EXPECT_EQ(firing.nextDue(RunLoopMode::Modal), 6s);
}

TEST_F(AQueue, DoesNotFireATimerInsideItsOwnAction) {
    const auto nested = Timer::scheduledTimer(
        1,
        [this](const auto&) {
            fired.emplace_back("outer");
            EXPECT_EQ(firing.nextDue(RunLoopMode::Modal), std::nullopt);
            EXPECT_FALSE(firing.fireDue(10s, RunLoopMode::Modal));
        },
        {}, true);
    firing.add(nested, 0s);
    EXPECT_TRUE(firing.fireDue(1s, RunLoopMode::Default));
    EXPECT_EQ(fired, std::vector<std::string>{"outer"});
    EXPECT_EQ(firing.nextDue(RunLoopMode::Default), 2s);
}

TEST_F(AQueue, FiresAnotherTimerInsideAnAction) {
    firing.add(Timer::scheduledTimer(
                   1,
                   [this](const auto&) {
                       fired.emplace_back("begin");
                       firing.fireDue(10s, RunLoopMode::Modal);
                       fired.emplace_back("end");
                   },
                   {}, false),
               0s);
    firing.add(timer(2, "tick", true), 0s);
    firing.fireDue(1s, RunLoopMode::Default);
    EXPECT_EQ(fired, (std::vector<std::string>{"begin", "tick", "end"}));
}

TEST_F(AQueue, LetsNewcomersWaitForTheNextCall) {
    int depth = 0;
    std::function<void(const std::shared_ptr<Timer>&)> chain = [&](const std::shared_ptr<Timer>& self) {
        removeIfDone(*self);
        if (++depth < 1000) {
            queue.add(Timer::scheduledTimer(-1, chain, {}, false), 0s);
        }
    };
    queue.add(Timer::scheduledTimer(0, chain, {}, false), 0s);
    queue.fireDue(1s, RunLoopMode::Default);
    EXPECT_EQ(depth, 1);
    queue.fireDue(1s, RunLoopMode::Default);
    EXPECT_EQ(depth, 2);
}

TEST_F(AQueue, ForgetsWhatIsRemoved) {
    const auto removed = timer(1, "removed");
    queue.add(removed, 0s);
    queue.remove(*removed);
    queue.remove(*removed);
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_FALSE(queue.fireDue(5s, RunLoopMode::Default));
}

TEST_F(AQueue, SurvivesRemovalDuringAnAction) {
    const auto second = timer(2, "second");
    queue.add(Timer::scheduledTimer(
                  1,
                  [&](const std::shared_ptr<Timer>& self) {
                      queue.remove(*second);
                      queue.remove(*self);
                  },
                  {}, true),
              0s);
    queue.add(second, 0s);
    EXPECT_TRUE(queue.fireDue(5s, RunLoopMode::Default));
    EXPECT_TRUE(fired.empty());
    EXPECT_TRUE(queue.isEmpty());
}

TEST_F(AQueue, TakesStrangeIntervals) {
    queue.add(timer(0, "zero"), 1s);
    queue.add(timer(-1e300, "negative"), 1s);
    queue.add(timer(std::numeric_limits<double>::quiet_NaN(), "no number"), 1s);
    queue.add(timer(1e300, "endless"), 1s);
    queue.add(timer(0, "restless", true), 1s);
    queue.fireDue(1s, RunLoopMode::Default);
    EXPECT_TRUE(fired.empty());
    queue.fireDue(1001ms, RunLoopMode::Default);
    EXPECT_EQ(fired, (std::vector<std::string>{"zero", "negative", "no number", "restless"}));
    EXPECT_GT(queue.nextDue(RunLoopMode::Default), 1001ms);
}

} // namespace
} // namespace bench
