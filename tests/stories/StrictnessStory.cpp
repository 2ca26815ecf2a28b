// The desktop itself: a story that expects what is not there fails, and so does one that overlooks something.

#include "app/main.hpp"
#include "platform/UserDefaults.hpp"
#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

namespace story {
namespace {

TEST(AStory, FailsWhenItUsesWhatIsNotThere) {
    StoryDesktop desktop;
    EXPECT_THROW(desktop.title(), Unexpected);
    EXPECT_THROW(desktop.sleepAndWake(), Unexpected);
    desktop.hadAFirstRun();
    desktop.launch();
    EXPECT_THROW(desktop.launch(), Unexpected);
    EXPECT_THROW(desktop.alert(), Unexpected);
    EXPECT_THROW(desktop.click("Restart"), Unexpected);
    EXPECT_THROW(desktop.pressReturn(), Unexpected);
    EXPECT_THROW(desktop.type("1"), Unexpected);
    EXPECT_THROW(desktop.closeWindow(), Unexpected);
    EXPECT_THROW(desktop.pick("Exit"), Unexpected);
    EXPECT_THROW(desktop.pickByKey("x"), Unexpected);
    EXPECT_THROW(desktop.pickByKey(""), Unexpected);

    desktop.pick("Settings");
    EXPECT_THROW(desktop.click("Cancel"), Unexpected);
    EXPECT_THROW(desktop.tick("Restart after sleep"), Unexpected); // it is on already
    EXPECT_THROW(desktop.tick("Restart after lunch"), Unexpected);
    EXPECT_THROW(desktop.tick("Reminder sound"), Unexpected); // no toggle
    EXPECT_THROW(desktop.choose("Reminder sound", "Gong"), Unexpected);
    desktop.closeWindow();

    desktop.wait(10min);
    desktop.heard();
    EXPECT_THROW(desktop.click("Later"), Unexpected);
    EXPECT_THROW(desktop.tick("Never again"), Unexpected);
    EXPECT_THROW(desktop.untick("Disable popup notifications"), Unexpected);
    EXPECT_THROW(desktop.panelLines(), Unexpected);
    desktop.click("Restart");
}

TEST(AStory, FailsForWhatItOverlooks) {
    std::vector<std::string> complaints;
    {
        platform::simulated::SimulatedDesktop desktop{
            oneOfManyPrograms, [&](const std::string& complaint) { complaints.push_back(complaint); }};
        desktop.resources = StoryDesktop::completeInstallation();
        desktop.resources.erase("Whistle.m4a");
        desktop.launch();
        desktop.wait(10min);
    }
    const std::string message = "Failed to initialize custom audio: Invalid URL to audio file";
    EXPECT_EQ(complaints,
              (Lines{"an alert came up that nobody looked at: \"Marvelode Timer\" \"Look around. Take a breath. "
                     "Stretch.\"",
                     "a noise was made that nobody heard: beep", "a line was printed that nobody read: " + message,
                     "an entry was logged that nobody read: " + message}));
}

TEST(AStory, ReadsTheOrderOfAllThatHappened) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.resources.erase("Bowl.m4a");
    desktop.launch();
    const std::string message = "Failed to initialize custom audio: Invalid URL to audio file";
    EXPECT_EQ(desktop.journal(), (Lines{"printed " + message, "logged " + message, "stored Version 1.2.0",
                                        "published Init to Timing"}));
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Snooze");
    const std::string alert = R"(alert "Marvelode Timer" "Look around. Take a breath. Stretch.")";
    EXPECT_EQ(desktop.journal(),
              (Lines{"published Timing to Reminding", "heard beep", "shown " + alert, "closed " + alert,
                     "stored PopupAlerts 0", "published PopupAlerts false", "published Reminding to Timing"}));
    desktop.pick("Settings");
    desktop.choose("Reminder sound", "Sonar");
    desktop.click("OK");
    EXPECT_EQ(
        desktop.journal(),
        (Lines{"shown panel \"Marvelode Timer\"", "heard Sonar", "stored AlertSound Sonar",
               "published AlertSound Sonar", "stored ResartOnWake 1", "published RestartOnWake true",
               "stored AutoRestart 1", "published AutoRestart true", "stored TimerInterval 600",
               "published TimerInterval 600", "published Timing to Timing", "closed panel \"Marvelode Timer\""}));
    EXPECT_EQ(desktop.heard(), Lines{}); // it has been read
}

TEST(AStory, CanTakeAnAlertAwayUnanswered) {
    StoryDesktop desktop;
    EXPECT_THROW(desktop.makeAlertVanish(), Unexpected);
    desktop.workUntilTheBreak();
    desktop.heard();
    desktop.makeAlertVanish();
    EXPECT_FALSE(desktop.alertIsUp());
    desktop.wait(1min); // which counts as a snooze
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST(AStory, IsToldThatAWindowNeedsAProgram) {
    StoryDesktop desktop;
    platform::NSAlert alert;
    platform::NSPanel panel;
    EXPECT_THROW(alert.runModal(), Unexpected);
    EXPECT_THROW(platform::NSApplication::shared().runModal(panel), Unexpected);
    desktop.hadAFirstRun();
    desktop.launch();
    EXPECT_THROW(alert.runModal(), Unexpected); // the story is no part of the program
    try {
        alert.runModal();
    } catch (const Unexpected& error) {
        EXPECT_STREQ(error.what(),
                     "alert \"\" \"\" cannot be shown before launch() or outside of the program: use perform()");
    }
    EXPECT_TRUE(desktop.isEnabled("Settings")); // nothing is up
}

TEST(AStory, IsToldThatThereIsADesktopAlready) {
    const StoryDesktop desktop;
    try {
        const StoryDesktop second;
        ADD_FAILURE() << "there are two desktops";
    } catch (const std::logic_error& error) {
        EXPECT_STREQ(error.what(), "there is a desktop already; a process has one at a time");
    }
    EXPECT_EQ(&platform::NSApplication::shared(), &desktop.application);
}

TEST(AStory, SeesWhatEscapesFromTheProgram) {
    platform::simulated::SimulatedDesktop desktop{
        [](int, const char* const*) -> int { throw std::runtime_error{"escaped"}; },
        [](const std::string& complaint) { ADD_FAILURE() << complaint; }};
    EXPECT_THROW(desktop.launch(), std::runtime_error);
    EXPECT_FALSE(desktop.isRunning());
}

} // namespace
} // namespace story
