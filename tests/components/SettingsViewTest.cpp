#include "tests/components/SettingsForm.hpp"

namespace bench {
namespace {

using Sound = Cfg::Sound;

// What it shows

TEST_F(TheForm, ShowsTheSettings) {
    desktop.defaults["TimerInterval"] = 1559.0; // 25 minutes and 59 seconds
    desktop.defaults["AlertSound"] = "Bowl"s;
    desktop.defaults["ResartOnWake"] = true;
    open();
    EXPECT_EQ(desktop.panelLines(),
              (Lines{"picture Marvelode.png | Marvelode Timer", "Interval in minutes | [25]",
                     "Restart after sleep | [x]", "Auto restart timer | [ ]", "Reminder sound | <Bowl>", "(OK)"}));
}

TEST_F(TheForm, ReadsTheSettingsOnceOnly) {
    open();
    desktop.closeWindow();
    desktop.defaults["TimerInterval"] = 1500.0;
    desktop.defaults["AlertSound"] = "Bowl"s;
    open();
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [10]");
    EXPECT_EQ(desktop.panelLines().at(4), "Reminder sound | <System>");
}

TEST_F(TheForm, HasNoPictureAndBeginsWithZeroMinutesInTestMode) {
    cfg = makeCfg(true);
    open();
    EXPECT_EQ(desktop.panelLines().at(0), "Marvelode Timer");
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [0]");
    desktop.click("OK");
    expectRefused();
}

TEST_F(TheForm, HasThePresentIntervalInSecondsForAPlaceholder) {
    open();
    desktop.type("");
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [\"600\"]");
    desktop.closeWindow();
    desktop.defaults["TimerInterval"] = 1500.9;
    open();
    desktop.type("");
    EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [\"1500\"]");
}

TEST_F(TheForm, OffersTheSoundsInTheirOrder) {
    open();
    const auto picker = controlBeside("Reminder sound", desktop.panelContent());
    EXPECT_EQ(std::get<node::Picker>(picker->view->node).items, soundNames(true));
}

TEST_F(TheForm, ComesToTheFront) {
    open();
    EXPECT_TRUE(desktop.isInFront());
    desktop.closeWindow();
    desktop.switchAway();
    open();
    EXPECT_TRUE(desktop.isInFront());
}

TEST_F(TheForm, DisablesTheAutomaticRestartWithPopupsOnButStillWritesIt) {
    desktop.defaults["PopupAlerts"] = true;
    desktop.defaults["AutoRestart"] = true;
    open();
    EXPECT_EQ(desktop.panelLines().at(3), "Auto restart timer | [x] disabled");
    desktop.defaults.erase("AutoRestart");
    desktop.click("OK");
    EXPECT_EQ(stored("AutoRestart"), DefaultsValue{true});
}

// Saving

TEST_F(TheForm, SavesIntervalsFromOneMinuteToTwoHours) {
    for (const auto& [minutes, seconds] :
         std::map<std::string, double>{{"1", 60.0}, {"120", 7200.0}, {" 7 ", 420.0}}) {
        open();
        confirm(minutes);
        EXPECT_FALSE(desktop.panelIsUp());
        EXPECT_EQ(stored("TimerInterval"), DefaultsValue{seconds});
    }
}

TEST_F(TheForm, RefusesIntervalsOutsideOfThat) {
    desktop.defaults["TimerInterval"] = 900.0;
    open();
    for (const std::string minutes : {"0", "121", "-1", "99999999999"}) {
        confirm(minutes);
        expectRefused();
        EXPECT_EQ(desktop.panelLines().at(1), "Interval in minutes | [" + minutes + "]");
    }
    EXPECT_EQ(stored("TimerInterval"), DefaultsValue{900.0});
}

TEST_F(TheForm, LeavesTheMinutesWhenTheTextIsNoNumber) {
    open();
    for (const std::string text : {"soon", "", "1.5", "5 minutes", "99999999999999999999"}) {
        confirm(text);
        EXPECT_FALSE(desktop.panelIsUp());
        EXPECT_EQ(stored("TimerInterval"), DefaultsValue{600.0}) << text;
        open();
    }
}

TEST_F(TheForm, WritesAndPublishesInItsOrder) {
    desktop.defaults["AutoRestart"] = true;
    open();
    desktop.tick("Restart after sleep");
    desktop.choose("Reminder sound", "Bowl");
    EXPECT_EQ(desktop.heard(), Lines{"Bowl"});
    EXPECT_TRUE(published.empty());
    confirm("25");
    EXPECT_EQ(published, (std::vector<Parameter>{{Parameter::AlertSound{Sound::Bowl}},
                                                 {Parameter::RestartOnWake{true}},
                                                 {Parameter::AutoRestart{true}},
                                                 {Parameter::TimerInterval{1500}}}));
    EXPECT_EQ(stored("AlertSound"), DefaultsValue{"Bowl"s});
    EXPECT_EQ(stored("ResartOnWake"), DefaultsValue{true});
    EXPECT_EQ(stored("AutoRestart"), DefaultsValue{true});
    EXPECT_EQ(stored("RestartOnWake"), std::nullopt);
}

TEST_F(TheForm, PublishesEachSettingRightAfterWritingIt) {
    std::vector<std::size_t> storedSoFar;
    events->subscribe([&](Parameter) { storedSoFar.push_back(desktop.defaults.size()); });
    open();
    desktop.click("OK");
    EXPECT_EQ(storedSoFar, (std::vector<std::size_t>{2, 3, 4, 5})); // the version was there before
}

TEST_F(TheForm, SavesAllButTheIntervalWhenThatIsRefused) {
    open();
    desktop.tick("Restart after sleep");
    desktop.tick("Auto restart timer");
    desktop.choose("Reminder sound", "Whistle");
    desktop.heard();
    confirm("0");
    EXPECT_EQ(published, (std::vector<Parameter>{{Parameter::AlertSound{Sound::Whistle}},
                                                 {Parameter::RestartOnWake{true}},
                                                 {Parameter::AutoRestart{true}}}));
    expectRefused();
    EXPECT_EQ(stored("AlertSound"), DefaultsValue{"Whistle"s});
    EXPECT_EQ(stored("ResartOnWake"), DefaultsValue{true});
    EXPECT_EQ(stored("AutoRestart"), DefaultsValue{true});
    EXPECT_EQ(stored("TimerInterval"), std::nullopt);
}

TEST_F(TheForm, SavesOnReturnInTheFieldAndElsewhere) {
    open();
    desktop.type("7");
    desktop.pressReturn();
    EXPECT_FALSE(desktop.panelIsUp());
    EXPECT_EQ(stored("TimerInterval"), DefaultsValue{420.0});
    open();
    desktop.tick("Restart after sleep");
    desktop.pressReturn();
    EXPECT_FALSE(desktop.panelIsUp());
    EXPECT_EQ(stored("ResartOnWake"), DefaultsValue{true});
}

TEST_F(TheForm, SavesNothingWhenItIsClosed) {
    open();
    desktop.tick("Restart after sleep");
    desktop.closeWindow();
    EXPECT_EQ(stored("ResartOnWake"), std::nullopt);
    EXPECT_TRUE(published.empty());
}

// Sounds

TEST_F(TheForm, PlaysASoundThatIsChosen) {
    open();
    desktop.choose("Reminder sound", "Sonar");
    desktop.choose("Reminder sound", "System");
    EXPECT_EQ(desktop.heard(), (Lines{"Sonar", "beep"}));
}

TEST_F(TheForm, PlaysASoundThatIsChosenEvenWhenMuted) {
    desktop.defaults["Mute"] = true;
    open();
    desktop.choose("Reminder sound", "Sonar");
    EXPECT_EQ(desktop.heard(), Lines{"Sonar"});
}

TEST_F(TheForm, BeepsForASoundThatCouldNotBeLoaded) {
    desktop.resources.erase("Sonar.m4a");
    open();
    desktop.logged();
    desktop.printed();
    desktop.choose("Reminder sound", "Sonar");
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST_F(TheForm, PlaysNothingForTheSoundThatIsChosenAlready) {
    open();
    desktop.choose("Reminder sound", "System");
    EXPECT_EQ(desktop.heard(), Lines{});
}

// Conditions that stop the program

using FormDeathTest = TheForm;

TEST_F(FormDeathTest, AnOverflowOfTheSecondsIsFatal) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_FATAL({
        open();
        confirm("153722867280912931"); // times 60 is just too much
    });
}

TEST_F(FormDeathTest, ANegativeStoredIntervalIsFatalWhenTheFormIsShown) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    desktop.defaults["TimerInterval"] = -60.0;
    EXPECT_FATAL(open());
}

TEST_F(TheForm, IsRefusedJustBelowTheOverflow) {
    open();
    confirm("153722867280912930");
    expectRefused();
}

TEST_F(TheForm, DoesNothingWhenItsDoneIsCalledWithoutAHost) {
    const SettingsView view{cfg, std::make_shared<UXAudio>(cfg)};
    EXPECT_NO_THROW(view._done());
}

} // namespace
} // namespace bench
