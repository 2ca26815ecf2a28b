// Waking, as clocks and login manager tell of it: each sleep is noticed once.

#include "platform/linux/WakeNotice.hpp"

#include <gtest/gtest.h>

#include <chrono>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

class WakeNoticeTest : public testing::Test {
protected:
    std::chrono::nanoseconds read(clockid_t clock) {
        awake += pauseInReadings;
        return clock == CLOCK_BOOTTIME ? awake + asleep : awake;
    }

    std::chrono::nanoseconds awake = 1h;
    std::chrono::nanoseconds asleep = 8h;
    std::chrono::nanoseconds pauseInReadings = 0s;
    int wakes = 0;
    WakeNotice notice{[this] { ++wakes; }, [this](clockid_t clock) { return read(clock); }};
};

TEST_F(WakeNoticeTest, TheClocksTellOfASleepOfWhichNobodyElseDoes) {
    notice.look();
    EXPECT_EQ(wakes, 0) << "it slept before the program was started";
    for (int night = 1; night <= 3; ++night) {
        asleep += 8h;
        notice.look();
        notice.look();
        EXPECT_EQ(wakes, night);
    }
}

TEST_F(WakeNoticeTest, TheClocksShowNoSleepOfTwoSeconds) {
    asleep += 2s;
    notice.look();
    EXPECT_EQ(wakes, 0);
    asleep += 2s + 1ns;
    notice.look();
    EXPECT_EQ(wakes, 1);
}

TEST_F(WakeNoticeTest, TimeThatPassesAwakeIsNoSleep) {
    for (int hour = 0; hour < 24; ++hour) {
        awake += 1h;
        notice.look();
    }
    EXPECT_EQ(wakes, 0);
}

TEST_F(WakeNoticeTest, AProgramThatIsStoppedBetweenTwoReadingsDidNotSleep) {
    for (const auto pause : {0s, 60s, 10s, 0s, 3s, 0s}) {
        pauseInReadings = pause;
        notice.look();
    }
    EXPECT_EQ(wakes, 0);
    asleep += 3s;
    notice.look();
    EXPECT_EQ(wakes, 1);
}

TEST_F(WakeNoticeTest, ASleepThatWasHeardOfFirstIsNotSeenAfterwards) {
    asleep += 8h;
    notice.hear();
    notice.look();
    EXPECT_EQ(wakes, 1);
}

TEST_F(WakeNoticeTest, ASleepThatWasSeenFirstIsNotHeardOfAfterwards) {
    asleep += 8h;
    notice.look();
    awake += WakeNotice::latestSignal;
    notice.hear();
    EXPECT_EQ(wakes, 1);
    notice.hear();
    EXPECT_EQ(wakes, 2) << "that was another";
}

TEST_F(WakeNoticeTest, ASignalLongAfterASleepThatWasSeenIsOfAnother) {
    asleep += 8h;
    notice.look();
    awake += WakeNotice::latestSignal + 1s;
    notice.hear();
    EXPECT_EQ(wakes, 2);
}

TEST_F(WakeNoticeTest, ASignalRightAfterTheNextSleepIsOfThatOne) {
    asleep += 8h;
    notice.look();
    asleep += 10s;
    notice.hear();
    notice.look();
    EXPECT_EQ(wakes, 2);
}

TEST_F(WakeNoticeTest, ASleepTooShortForTheClocksIsHeardOf) {
    asleep += 1s;
    notice.hear();
    notice.hear();
    EXPECT_EQ(wakes, 2) << "both were told";
}

TEST(TimeBy, CountsSleepByTheOneClockOnly) {
    const auto awake = timeBy(CLOCK_MONOTONIC);
    EXPECT_GT(awake, 0s);
    EXPECT_GE(timeBy(CLOCK_BOOTTIME), awake);
}

} // namespace
} // namespace platform::linux
