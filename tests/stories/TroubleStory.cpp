// A damaged installation, and settings that were edited by hand.

#include "platform/UserDefaults.hpp"
#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

namespace story {
namespace {

using platform::simulated::LogEntry;

LogEntry entry(const std::string& message) { return {"Marvelode Timer", "MarvelodeLog", message}; }

TEST(MissingSounds, AreLoggedAndReplacedByTheBeep) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["AlertSound"] = std::string{"Bowl"};
    desktop.resources.erase("Bowl.m4a");
    desktop.launch();
    EXPECT_EQ(desktop.logged(), std::vector{entry("Failed to initialize custom audio: Invalid URL to audio file")});
    EXPECT_EQ(desktop.printed(), Lines{"Failed to initialize custom audio: Invalid URL to audio file"});
    desktop.wait(10min);
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    desktop.click("Restart");
}

TEST(BrokenSounds, AreLoggedAndReplacedByTheBeep) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.resources["Whistle.m4a"] = TextFile{"no sound"};
    desktop.launch();
    const std::string message = "Failed to initialize custom audio: Could not find sound file for Whistle";
    EXPECT_EQ(desktop.logged(), std::vector{entry(message)});
    EXPECT_EQ(desktop.printed(), Lines{message});
    desktop.pick("Settings");
    desktop.choose("Reminder sound", "Whistle");
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST(AMissingBuildInfo, LeavesTheTextsUnknown) {
    StoryDesktop desktop;
    desktop.resources.erase("BuildInfo.txt");
    desktop.launch();
    desktop.pick("About Marvelode Timer");
    EXPECT_EQ(desktop.panelLines().at(0), "picture Marvelode.png | Marvelode Timer, UNKNOWN");
    EXPECT_EQ(desktop.panelLines().at(1), "Version: UNKNOWN");
    EXPECT_EQ(desktop.panelLines().at(2), "Build: UNKNOWN");
}

TEST(ALogThatTakesNoErrors, LeavesThePrintedLine) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.resources.erase("Sonar.m4a");
    desktop.logsErrors = false;
    desktop.launch();
    EXPECT_EQ(desktop.logged(), std::vector<LogEntry>{});
    EXPECT_EQ(desktop.printed().size(), 1U);
}

TEST(SettingsOfTheWrongType, AreReadAsWellAsTheyCanBe) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["TimerInterval"] = std::string{"300 seconds"};
    desktop.defaults["Mute"] = std::string{"YES"};
    desktop.defaults["AlertSound"] = true;
    desktop.launch();
    EXPECT_TRUE(desktop.isChecked("Mute"));
    desktop.wait(5min);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{});
}

TEST(ANegativeInterval, RemindsAtOnce) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.defaults["TimerInterval"] = -60.0;
    desktop.launch();
    EXPECT_EQ(desktop.state(), AppState::Timing);
    desktop.wait(1ms);
    EXPECT_TRUE(desktop.alertIsUp());
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

class TroubleDeathTest : public testing::Test {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_F(TroubleDeathTest, AMissingTimerPictureStopsTheProgram) {
    EXPECT_EXIT(
        {
            StoryDesktop desktop;
            desktop.resources.erase("Marvelode.png");
            desktop.launch();
        },
        testing::KilledBySignal(SIGABRT), "");
}

TEST_F(TroubleDeathTest, AMissingReminderPictureStopsTheProgramWhenItIsNeeded) {
    EXPECT_EXIT(
        {
            StoryDesktop desktop;
            desktop.resources.erase("MarvelodeGrey.png");
            desktop.launch();
            desktop.wait(9min);
            std::fputs("so far so good", stderr);
            desktop.wait(1min);
        },
        testing::KilledBySignal(SIGABRT), "so far so good");
}

TEST_F(TroubleDeathTest, ANegativeIntervalStopsTheProgramWhenTheSettingsOpen) {
    EXPECT_EXIT(
        {
            StoryDesktop desktop;
            desktop.hadAFirstRun();
            desktop.launch();
            desktop.defaults["TimerInterval"] = -60.0;
            std::fputs("so far so good", stderr);
            desktop.pick("Settings");
        },
        testing::KilledBySignal(SIGABRT), "so far so good");
}

TEST_F(TroubleDeathTest, ALineWithoutAValueInTheBuildInfoStopsTheProgram) {
    EXPECT_EXIT(
        {
            StoryDesktop desktop;
            desktop.resources["BuildInfo.txt"] = TextFile{"Build=\n"};
            desktop.launch();
        },
        testing::KilledBySignal(SIGABRT), "");
}

} // namespace
} // namespace story
