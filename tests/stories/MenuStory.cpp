// What the menu offers.

#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

namespace story {
namespace {

class TheMenu : public testing::Test {
protected:
    StoryDesktop desktop;

    void SetUp() override {
        desktop.hadAFirstRun();
        desktop.launch();
    }
};

TEST_F(TheMenu, RestartsTheTimer) {
    desktop.wait(8min);
    desktop.pick("Restart timer");
    EXPECT_EQ(desktop.title(), "11m");
    desktop.wait(8min);
    EXPECT_FALSE(desktop.alertIsUp());
}

TEST_F(TheMenu, CanBeUsedByKeys) {
    desktop.wait(8min);
    desktop.pickByKey("r");
    EXPECT_EQ(desktop.title(), "11m");
    desktop.pickByKey("s");
    EXPECT_EQ(desktop.panelLines().back(), "(OK)");
    desktop.closeWindow();
    desktop.pickByKey("q");
    EXPECT_FALSE(desktop.isRunning());
}

TEST_F(TheMenu, ShowsTheAboutBox) {
    desktop.pick("About Marvelode Timer");
    const Lines lines = desktop.panelLines();
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_EQ(lines[0], "picture Marvelode.png | Marvelode Timer, 2025-06-09");
    EXPECT_EQ(lines[1], "Version: 1.2.0");
    EXPECT_EQ(lines[2], "Build: 1427");
    EXPECT_EQ(lines[3].substr(0, 10), "[License](");
    EXPECT_EQ(lines[6], "(OK)");
    EXPECT_FALSE(desktop.isInFront());
    desktop.pressReturn();
    EXPECT_FALSE(desktop.panelIsUp());
}

TEST_F(TheMenu, TakesNothingWhileAWindowIsOpen) {
    desktop.pick("About Marvelode Timer");
    EXPECT_THROW(desktop.pick("Quit"), Unexpected);
    EXPECT_THROW(desktop.pickByKey("r"), Unexpected);
    desktop.click("OK");
    desktop.pick("Quit");
    EXPECT_FALSE(desktop.isRunning());
}

TEST_F(TheMenu, LeavesTheReminderWaitingUntilTheAboutBoxIsClosed) {
    desktop.pick("About Marvelode Timer");
    desktop.wait(15min);
    EXPECT_FALSE(desktop.alertIsUp());
    desktop.click("OK");
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST_F(TheMenu, LeavesAStaleMarkWhenThePopupIsTurnedOffElsewhere) {
    desktop.wait(10min);
    desktop.tick("Disable popup notifications");
    desktop.click("Restart");
    desktop.heard();
    EXPECT_TRUE(desktop.isChecked("Popup reminders"));
    desktop.pick("Quit");
    desktop.launch();
    EXPECT_FALSE(desktop.isChecked("Popup reminders"));
}

} // namespace
} // namespace story
