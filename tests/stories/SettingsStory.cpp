// The settings window.

#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

namespace story {
namespace {

class TheSettings : public testing::Test {
protected:
    StoryDesktop desktop;

    void SetUp() override {
        desktop.hadAFirstRun();
        desktop.launch();
        desktop.pick("Settings");
    }

    std::optional<platform::DefaultsValue> stored(const std::string& key) const {
        const auto found = desktop.defaults.find(key);
        return found == desktop.defaults.end() ? std::nullopt : std::optional{found->second};
    }
};

TEST_F(TheSettings, ShowWhatIsSet) {
    EXPECT_EQ(desktop.panelLines(), (Lines{"picture Marvelode.png | Marvelode Timer", "Interval in minutes | [10]",
                                           "Restart after sleep | [x]", "Auto restart timer | [x] disabled",
                                           "Reminder sound | <System>", "(OK)"}));
    EXPECT_TRUE(desktop.isInFront());
    EXPECT_TRUE(desktop.panelIsCentred());
}

TEST_F(TheSettings, AreSavedTogetherWhenConfirmed) {
    desktop.type("25");
    desktop.untick("Restart after sleep");
    desktop.choose("Reminder sound", "Whistle");
    EXPECT_EQ(desktop.heard(), Lines{"Whistle"});
    EXPECT_EQ(stored("TimerInterval"), std::nullopt);
    EXPECT_EQ(stored("AlertSound"), std::nullopt);
    desktop.click("OK");
    EXPECT_FALSE(desktop.panelIsUp());
    EXPECT_EQ(stored("TimerInterval"), platform::DefaultsValue{1500.0});
    EXPECT_EQ(stored("ResartOnWake"), platform::DefaultsValue{false});
    EXPECT_EQ(stored("AlertSound"), platform::DefaultsValue{std::string{"Whistle"}});
    EXPECT_EQ(desktop.title(), "26m");
}

TEST_F(TheSettings, RefuseAnIntervalOfNothing) {
    desktop.type("0");
    desktop.choose("Reminder sound", "Bowl");
    desktop.heard();
    desktop.pressReturn();
    EXPECT_EQ(desktop.alert().messageText, "Oops");
    EXPECT_EQ(desktop.alert().informativeText, "Invalid interval");
    EXPECT_EQ(desktop.alert().buttons(), Lines{"OK"});
    desktop.click("OK");
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [0]"); // until it is corrected
    EXPECT_EQ(stored("TimerInterval"), std::nullopt);
    EXPECT_EQ(stored("AlertSound"), platform::DefaultsValue{std::string{"Bowl"}}); // saved all the same

    desktop.type("5");
    desktop.pressReturn();
    EXPECT_FALSE(desktop.panelIsUp());
    EXPECT_EQ(stored("TimerInterval"), platform::DefaultsValue{300.0});
}

TEST_F(TheSettings, LeaveTheMinutesAloneWhenWhatWasTypedIsNoNumber) {
    desktop.type("soon");
    desktop.click("OK");
    EXPECT_EQ(stored("TimerInterval"), platform::DefaultsValue{600.0});
    EXPECT_FALSE(desktop.panelIsUp());
}

TEST_F(TheSettings, KeepAnAbandonedEditForTheNextTime) {
    desktop.type("77");
    desktop.untick("Restart after sleep"); // leaving the field takes the number over
    desktop.closeWindow();
    EXPECT_EQ(stored("ResartOnWake"), platform::DefaultsValue{true});
    desktop.pick("Settings");
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [77]");
    EXPECT_EQ(desktop.panelLines().at(2), "Restart after sleep | [ ]");
}

TEST_F(TheSettings, ShowTheSecondsInAnEmptyField) {
    desktop.type("");
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [\"600\"]");
}

TEST_F(TheSettings, OfferTheAutomaticRestartOnlyWithoutPopups) {
    EXPECT_THROW(desktop.untick("Auto restart timer"), Unexpected);
    desktop.click("OK");
    desktop.pick("Popup reminders");
    desktop.pick("Settings");
    desktop.untick("Auto restart timer");
    desktop.click("OK");
    EXPECT_EQ(stored("AutoRestart"), platform::DefaultsValue{false});
}

TEST_F(TheSettings, OpenInTheMiddleEveryTime) {
    desktop.dragPanelAway();
    desktop.click("OK");
    desktop.pick("Settings");
    EXPECT_TRUE(desktop.panelIsCentred());
}

TEST_F(TheSettings, GoOnWithTheTimerTheyStartWhenTheMachineWakesMeanwhile) {
    desktop.wait(4min);
    desktop.sleepAndWake(1h);
    EXPECT_TRUE(desktop.panelIsUp());
    desktop.closeWindow();
    EXPECT_EQ(desktop.title(), "11m");
}

} // namespace
} // namespace story
