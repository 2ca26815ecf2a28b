// A break is due, and the user has no time.

#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

namespace story {
namespace {

TEST(Snooze, KeepsTheDeadline) {
    StoryDesktop desktop;
    desktop.launch({"-test"});
    const double due = desktop.deadline();
    desktop.wait(30s);
    EXPECT_EQ(desktop.alert().buttons(), (Lines{"Restart", "Snooze"}));
    desktop.wait(2min); // the user is away; the popup waits
    desktop.click("Snooze");
    desktop.wait(1s);
    EXPECT_EQ(desktop.title(), "+2m");
    desktop.wait(4s);
    EXPECT_TRUE(desktop.alertIsUp()); // it is back
    EXPECT_EQ(desktop.deadline(), due);
    EXPECT_EQ(desktop.heard(), (Lines{"beep", "beep"}));
}

TEST(Snooze, CanBeRepeatedForAsLongAsOneLikes) {
    StoryDesktop desktop;
    desktop.workUntilTheBreak();
    for (int snoozes = 1; snoozes <= 90; ++snoozes) {
        desktop.click("Snooze");
        EXPECT_FALSE(desktop.alertIsUp());
        desktop.wait(1min);
        ASSERT_TRUE(desktop.alertIsUp()) << "after " << snoozes << " snoozes";
    }
    EXPECT_EQ(desktop.title(), "+>1h");
    EXPECT_EQ(desktop.heard().size(), 91U);
    desktop.click("Restart");
    EXPECT_EQ(desktop.title(), "11m");
}

TEST(Snooze, CountsUpInRed) {
    StoryDesktop desktop;
    desktop.workUntilTheBreak();
    desktop.click("Snooze");
    desktop.wait(30s);
    EXPECT_EQ(desktop.title(), "+30");
    EXPECT_EQ(desktop.titleColor(), NSColor::red);
    EXPECT_EQ(desktop.icon(), "MarvelodeGrey.png");
    desktop.heard();
}

TEST(Snooze, EndsWhenTheUserRestartsFromTheMenu) {
    StoryDesktop desktop;
    desktop.workUntilTheBreak();
    desktop.click("Snooze");
    desktop.heard();
    desktop.wait(20s);
    desktop.pickByKey("r");
    desktop.wait(9min + 59s);
    EXPECT_FALSE(desktop.alertIsUp());
    EXPECT_EQ(desktop.title(), "1");
    desktop.wait(1s);
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.heard();
}

TEST(ThePopup, IsAnsweredWithRestartByTheReturnKey) {
    StoryDesktop desktop;
    desktop.workUntilTheBreak();
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.pressReturn();
    EXPECT_EQ(desktop.state(), AppState::Timing);
    desktop.heard();
}

TEST(ThePopup, LeavesTheMenuWithoutAnythingToPick) {
    StoryDesktop desktop;
    desktop.workUntilTheBreak();
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.menu(), (Lines{"- About Marvelode Timer", "---", "- Restart timer (r)", "- Mute",
                                     "- x Popup reminders", "- Settings (s)", "---", "- Quit (q)"}));
    desktop.click("Snooze");
    EXPECT_EQ(desktop.menu().front(), "About Marvelode Timer");
    desktop.heard();
}

TEST(ThePopup, LetsTheTextCountOnWhereTheDesktopDoes) {
    StoryDesktop desktop{platform::RepeatingTimersDuringModal::Fire};
    desktop.workUntilTheBreak();
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.wait(42s);
    EXPECT_EQ(desktop.title(), "+42");
    desktop.heard();
}

TEST(ThePopup, HoldsTheTextWhereTheDesktopDoes) {
    StoryDesktop desktop;
    desktop.workUntilTheBreak();
    EXPECT_TRUE(desktop.alertIsUp());
    desktop.wait(42s);
    EXPECT_EQ(desktop.title(), "0");
    desktop.heard();
}

TEST(ThePopup, TurnedOffWithASnoozeGivesWayToTheSound) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["AutoRestart"] = false;
    desktop.launch();
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Snooze");
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    desktop.wait(1min);
    EXPECT_FALSE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    desktop.wait(1h);
    EXPECT_EQ(desktop.state(), AppState::Reminding);
    EXPECT_EQ(desktop.title(), "+>1h");
    desktop.pick("Restart timer");
    EXPECT_EQ(desktop.state(), AppState::Timing);
}

TEST(ThePopup, KeepsItsTickFromOneReminderToTheNext) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["AutoRestart"] = false;
    desktop.launch();
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Restart");
    desktop.pick("Popup reminders"); // stale: the mark was on, the setting off
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
    desktop.wait(10min);
    EXPECT_EQ(desktop.alert().suppressionButton()->state, platform::NSSuppressionButton::StateValue::On);
    desktop.click("Restart"); // and the tick counts again
    EXPECT_EQ(desktop.defaults.at("PopupAlerts"), platform::DefaultsValue{false});
    desktop.heard();
}

} // namespace
} // namespace story
