// From the first run to later ones.

#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

namespace story {
namespace {

TEST(FirstRun, BeginsWithTenMinutesAndEverythingSwitchedOn) {
    StoryDesktop desktop;
    desktop.launch();

    EXPECT_EQ(desktop.icon(), "Marvelode.png");
    EXPECT_EQ(desktop.menu(), (Lines{"About Marvelode Timer", "---", "Restart timer (r)", "Mute",
                                     "x Popup reminders", "Settings (s)", "---", "Quit (q)"}));
    desktop.wait(1s);
    EXPECT_EQ(desktop.title(), "10m");
    EXPECT_EQ(desktop.titleColor(), std::nullopt);

    desktop.wait(9min + 59s);
    EXPECT_EQ(desktop.alert().messageText, "Marvelode Timer");
    EXPECT_EQ(desktop.alert().informativeText, "Look around. Take a breath. Stretch.");
    EXPECT_EQ(desktop.alert().buttons(), (Lines{"Restart", "Snooze"}));
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    EXPECT_EQ(desktop.icon(), "MarvelodeGrey.png");
    EXPECT_EQ(desktop.titleColor(), NSColor::red);
    EXPECT_TRUE(desktop.isInFront());

    desktop.click("Restart");
    EXPECT_FALSE(desktop.alertIsUp());
    EXPECT_EQ(desktop.icon(), "Marvelode.png");
    EXPECT_EQ(desktop.title(), "11m");

    desktop.pick("Quit");
    EXPECT_FALSE(desktop.isRunning());
    EXPECT_EQ(desktop.exitStatus(), 0);
    EXPECT_EQ(desktop.defaults, (decltype(desktop.defaults){{"Version", std::string{"1.2.0"}},
                                                            {"PopupAlerts", true},
                                                            {"AutoRestart", true},
                                                            {"ResartOnWake", true},
                                                            {"ShowCountdown", true}}));
}

TEST(FirstRun, CannotTurnPopupsOff) {
    StoryDesktop desktop;
    desktop.launch();
    desktop.pick("Popup reminders");
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Restart");
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard().size(), 2U);
}

TEST(SecondRun, KeepsWhatTheUserChooses) {
    StoryDesktop desktop;
    desktop.launch();
    desktop.pick("Quit");

    desktop.launch();
    desktop.pick("Popup reminders");
    EXPECT_FALSE(desktop.isChecked("Popup reminders"));
    desktop.pick("Mute");
    desktop.pick("Settings");
    desktop.type("25");
    desktop.choose("Reminder sound", "Bowl");
    EXPECT_EQ(desktop.heard(), Lines{"Bowl"});
    desktop.click("OK");
    desktop.pick("Quit");

    desktop.launch();
    EXPECT_FALSE(desktop.isChecked("Popup reminders"));
    EXPECT_TRUE(desktop.isChecked("Mute"));
    desktop.wait(24min);
    EXPECT_EQ(desktop.title(), "2m");
    desktop.pick("Settings");
    EXPECT_EQ(desktop.panelLines(),
              (Lines{"picture Marvelode.png | Marvelode Timer", "Interval in minutes | [25]",
                     "Restart after sleep | [x]", "Auto restart timer | [x]", "Reminder sound | <Bowl>", "(OK)"}));
}

TEST(ALaterVersion, IsNoFirstRunAndRecordsItself) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["PopupAlerts"] = false;
    desktop.launch();
    EXPECT_FALSE(desktop.isChecked("Popup reminders"));
    EXPECT_EQ(desktop.defaults.at("Version"), platform::DefaultsValue{std::string{"1.2.0"}});
}

TEST(TestMode, LastsThirtySecondsAndSnoozesForFive) {
    StoryDesktop desktop;
    desktop.launch({"-test"});
    EXPECT_EQ(desktop.icon(), "");
    desktop.wait(29s);
    EXPECT_FALSE(desktop.alertIsUp());
    EXPECT_EQ(desktop.title(), "1");
    desktop.wait(1s);
    desktop.click("Snooze");
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    desktop.wait(5s);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    EXPECT_EQ(desktop.defaults.at("Version"), platform::DefaultsValue{std::string{"test"}});
    EXPECT_FALSE(desktop.lookedUp().contains("BuildInfo.txt"));
}

TEST(TheCommandLine, OverridesSettingsForOneRun) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.launch({"-TimerInterval", "1500", "-PopupAlerts", "NO", "-AutoRestart", "NO"});
    desktop.wait(25min);
    EXPECT_EQ(desktop.state(), AppState::Reminding);
    EXPECT_FALSE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    desktop.pick("Quit");

    desktop.launch();
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    EXPECT_FALSE(desktop.defaults.contains("TimerInterval"));
}

TEST(PowerLoss, WhileTheReminderIsUpLosesNoSetting) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["AlertSound"] = std::string{"Whistle"};
    desktop.launch();
    desktop.pick("Mute");
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.losePower();
    EXPECT_FALSE(desktop.isRunning());
    EXPECT_EQ(desktop.exitStatus(), std::nullopt);

    desktop.launch();
    EXPECT_TRUE(desktop.isChecked("Mute"));
    EXPECT_TRUE(desktop.isChecked("Popup reminders")); // the tick had not been confirmed by an answer
    desktop.wait(10min);
    EXPECT_TRUE(desktop.alertIsUp());
}

} // namespace
} // namespace story
