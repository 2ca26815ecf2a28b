// A day at work.

#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

namespace story {
namespace {

TEST(ADay, OfBreaksSnoozesSleepAndSettings) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["AlertSound"] = std::string{"Sonar"};
    desktop.launch();

    // Half an hour of work, with a break when it is due.
    for (int breaks = 0; breaks < 3; ++breaks) {
        desktop.wait(10min);
        EXPECT_EQ(desktop.heard(), Lines{"Sonar"});
        desktop.wait(2min);
        desktop.click("Restart");
    }

    // A telephone call: three snoozes.
    desktop.wait(10min);
    for (int snoozes = 0; snoozes < 3; ++snoozes) {
        desktop.click("Snooze");
        desktop.wait(1min);
        EXPECT_TRUE(desktop.alertIsUp());
    }
    EXPECT_EQ(desktop.heard(), (Lines{"Sonar", "Sonar", "Sonar", "Sonar"}));
    desktop.click("Restart");

    // A meeting in silence.
    desktop.pick("Mute");
    desktop.wait(10min);
    desktop.click("Restart");
    EXPECT_EQ(desktop.heard(), Lines{});
    desktop.pick("Mute");

    // Lunch: the machine sleeps, and wakes to a fresh interval.
    desktop.wait(7min);
    desktop.sleepAndWake(45min);
    EXPECT_EQ(desktop.title(), "11m");
    desktop.wait(9min);
    EXPECT_FALSE(desktop.alertIsUp());

    // Longer intervals for the afternoon, and another sound.
    desktop.pick("Settings");
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [10]");
    desktop.type("45");
    desktop.choose("Reminder sound", "Whistle");
    desktop.pressReturn();
    EXPECT_FALSE(desktop.panelIsUp());
    EXPECT_EQ(desktop.title(), "46m");
    EXPECT_EQ(desktop.heard(), Lines{"Whistle"});
    desktop.wait(44min + 59s);
    EXPECT_FALSE(desktop.alertIsUp());
    desktop.wait(1s);
    desktop.click("Restart");
    EXPECT_EQ(desktop.heard(), Lines{"Whistle"});

    // No more popups: from here on it restarts by itself after the sound.
    desktop.wait(45min);
    desktop.tick("Disable popup notifications");
    desktop.click("Restart");
    EXPECT_EQ(desktop.heard(), Lines{"Whistle"});
    desktop.wait(3h);
    EXPECT_EQ(desktop.heard(), (Lines{"Whistle", "Whistle", "Whistle", "Whistle"}));
    EXPECT_FALSE(desktop.alertIsUp());

    desktop.pickByKey("q");
    EXPECT_EQ(desktop.exitStatus(), 0);
}

TEST(ADay, OfCountingDown) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["TimerInterval"] = 7200.0;
    desktop.launch();
    const std::vector<std::pair<std::chrono::seconds, std::string>> texts{
        {1s, ">1h"},    {3599s, ">1h"}, {3600s, "61m"}, {3601s, "60m"}, {3660s, "60m"},
        {3661s, "59m"}, {7139s, "2m"},  {7140s, "2m"},  {7141s, "1m"},  {7189s, "1m"},
        {7190s, ""},    {7191s, "9"},   {7199s, "1"},   {7200s, "0"}};
    auto now = 0s;
    for (const auto& [when, text] : texts) {
        desktop.wait(when - now);
        now = when;
        EXPECT_EQ(desktop.title(), text) << "after " << when.count() << " s";
    }
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST(ADay, WithTheLidClosedWhileTheReminderIsUp) {
    StoryDesktop desktop;
    desktop.workUntilTheBreak();
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.sleepAndWake(8h);
    EXPECT_TRUE(desktop.alertIsUp()); // still there, while a new interval runs
    EXPECT_EQ(desktop.state(), AppState::Timing);
    desktop.wait(1min);
    desktop.click("Snooze"); // nothing left to snooze
    EXPECT_EQ(desktop.state(), AppState::Timing);
    EXPECT_EQ(desktop.title(), "10m");
    desktop.wait(1min);
    EXPECT_FALSE(desktop.alertIsUp());
    desktop.wait(8min);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), (Lines{"beep", "beep"}));
}

TEST(ADay, WhoseClockIsSetMovesTheTextButNotTheReminder) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.launch();
    desktop.wait(5min);
    desktop.setClockForth(1h);
    desktop.wait(1s);
    EXPECT_EQ(desktop.title(), "+55m");
    desktop.setClockForth(-2h);
    desktop.wait(1s);
    EXPECT_EQ(desktop.title(), ">1h");
    desktop.setClockForth(1h);
    desktop.wait(4min + 57s);
    EXPECT_FALSE(desktop.alertIsUp());
    desktop.wait(1s);
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.heard();
}

TEST(TheTickThatKeepsItsPhase, LeavesTheTextUpToASecondLateAfterARestart) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.launch();
    desktop.wait(1001ms);
    desktop.pick("Restart timer"); // just after a tick
    EXPECT_EQ(desktop.title(), "11m");
    desktop.wait(998ms); // nine minutes and 59 seconds are left
    EXPECT_EQ(desktop.title(), "11m");
    desktop.wait(1ms);
    EXPECT_EQ(desktop.title(), "10m");
}

TEST(ADay, OnABusyMachineIsOnlyLate) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.launch();
    desktop.wait(9min + 58s);
    desktop.stall(30s);
    desktop.wait(0s);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    desktop.click("Snooze");
    desktop.wait(1s);
    EXPECT_EQ(desktop.title(), "+29");
}

} // namespace
} // namespace story
