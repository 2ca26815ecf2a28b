// The break cycle while the popup is up, and after its answer.

#include "tests/components/BreakCycle.hpp"

namespace break_cycle {
namespace {

// Its answer

TEST_F(BreakCycle, RestartsWhenThePopupIsAnsweredSo) {
    launch(true, true);
    desktop.wait(10min);
    desktop.wait(33s);
    desktop.click("Restart");
    EXPECT_EQ(desktop.published(), (Lines{"Timing to Reminding", "Reminding to Timing"}));
    expectFreshInterval();
}

TEST_F(BreakCycle, SnoozesForAMinuteOnAnyOtherAnswerAndKeepsTheDeadline) {
    launch(true, true);
    const double deadline = desktop.deadline();
    desktop.wait(10min);
    desktop.click("Snooze");
    EXPECT_EQ(desktop.published(), Lines{"Timing to Reminding"});
    expectSnooze(60);
    desktop.wait(30s);
    EXPECT_EQ(app->countdown(), -30);
    EXPECT_EQ(desktop.deadline(), deadline);
    desktop.wait(30s);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.published(), Lines{});
}

/// A desktop on which every alert has this answer at once.
class AnsweringDesktop : public StoryDesktop {
public:
    explicit AnsweringDesktop(int answer)
        : _answer{answer} {}

private:
    int runAlert(platform::NSAlert&) override { return _answer; }

    int _answer;
};

TEST(AnAnswer, SnoozesUnlessItIsTheFirstButton) {
    for (const int answer : {platform::NSAlert::Stopped, -1001, 0, 999, 1001, 1002}) {
        AnsweringDesktop desktop{answer};
        desktop.hadAFirstRun();
        desktop.launch();
        desktop.wait(10min);
        EXPECT_EQ(desktop.published(), (Lines{"Init to Timing", "Timing to Reminding"})) << answer;
        EXPECT_EQ(std::any_cast<App::TimerType>(app->systemTimer->userInfo()), App::TimerType::Reminder);
        EXPECT_EQ(app->systemTimer->interval(), 60);
        EXPECT_EQ(app->countdown(), 0);
        EXPECT_EQ(desktop.heard(), Lines{"beep"});
    }
}

TEST_F(BreakCycle, IgnoresASnoozeThatIsChosenAfterAWake) {
    launch(true, true);
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.sleepAndWake(2h);
    desktop.click("Snooze");
    EXPECT_EQ(desktop.published(), (Lines{"Timing to Reminding", "Reminding to Timing"}));
    expectFreshInterval();
}

TEST_F(BreakCycle, RestartsAgainWhenThatIsChosenAfterAWake) {
    launch(true, true);
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.sleepAndWake(2h);
    desktop.wait(1min);
    desktop.click("Restart");
    EXPECT_EQ(desktop.published(), (Lines{"Timing to Reminding", "Reminding to Timing", "Timing to Timing"}));
    expectFreshInterval();
}

// The check box

TEST_F(BreakCycle, TurnsPopupsOffBeforeASnoozeThatEndsWithTheSoundAlone) {
    launch(true, false);
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Snooze");
    EXPECT_EQ(desktop.published(), (Lines{"Timing to Reminding", "PopupAlerts false"}));
    expectSnooze(60);
    desktop.heard();
    desktop.wait(1min);
    EXPECT_FALSE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    EXPECT_EQ(desktop.state(), App::State::Reminding);
    EXPECT_FALSE(desktop.isTimerPending());
}

TEST_F(BreakCycle, RestartsSilentlyAtTheEndOfASnoozeWithoutPopupsAndWithAutomaticRestart) {
    launch(true, true);
    desktop.wait(10min);
    desktop.click("Snooze");
    desktop.pick("Popup reminders"); // off, while the snooze runs
    desktop.heard();
    desktop.published();
    desktop.wait(1min);
    EXPECT_EQ(desktop.heard(), Lines{});
    EXPECT_EQ(desktop.published(), Lines{"Reminding to Timing"});
    expectFreshInterval();
}

TEST_F(BreakCycle, ReplacesTheSnoozeWhenPopupsWereTurnedOffWithAutomaticRestart) {
    launch(true, true);
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Snooze");
    EXPECT_EQ(desktop.published(), (Lines{"Timing to Reminding", "PopupAlerts false", "Reminding to Timing"}));
    EXPECT_EQ(desktop.defaults.at("PopupAlerts"), DefaultsValue{false});
    expectFreshInterval();
}

TEST_F(BreakCycle, RestartsTwiceWhenPopupsWereTurnedOffAndRestartChosenWithAutomaticRestart) {
    launch(true, true);
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Restart");
    EXPECT_EQ(desktop.published(),
              (Lines{"Timing to Reminding", "PopupAlerts false", "Reminding to Timing", "Timing to Timing"}));
    expectFreshInterval();
}

TEST_F(BreakCycle, SnoozesAgainAfterASecondReminderTurnedPopupsOff) {
    launch(true, true); // the end of a snooze does not read the setting again after the popup
    desktop.wait(10min);
    desktop.click("Snooze");
    desktop.wait(1min);
    desktop.tick("Disable popup notifications");
    desktop.click("Snooze");
    expectSnooze(60);
    desktop.wait(1min);
    expectFreshInterval();
}

TEST_F(BreakCycle, LeavesPopupsOnWithoutABoxToTick) {
    launch(true, true);
    desktop.perform([] { app->popup->alert.setShowsSuppressionButton(false); });
    desktop.wait(10min);
    desktop.click("Snooze");
    EXPECT_EQ(desktop.published(), Lines{"Timing to Reminding"});
    expectSnooze(60);
}

TEST_F(BreakCycle, KeepsPopupsOnDuringAFirstRunWhateverIsTicked) {
    desktop.launch();
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.published();
    desktop.click("Snooze");
    EXPECT_EQ(desktop.published(), Lines{"PopupAlerts false"});
    EXPECT_EQ(desktop.defaults.at("PopupAlerts"), DefaultsValue{true});
    expectSnooze(60);
}

// Its appearance

TEST_F(BreakCycle, BringsThePopupToTheFront) {
    launch(true, true);
    EXPECT_FALSE(desktop.isInFront());
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_TRUE(desktop.isInFront());
}

TEST_F(BreakCycle, StaysInTheBackWithoutPopups) {
    launch(false, true);
    desktop.wait(10min);
    EXPECT_FALSE(desktop.isInFront());
}

TEST_F(BreakCycle, PlaysTheSoundBeforeThePopupAndNotAfterIt) {
    launch(true, true);
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    desktop.click("Snooze");
    EXPECT_EQ(desktop.heard(), Lines{});
}

} // namespace
} // namespace break_cycle
