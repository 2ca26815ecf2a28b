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
            marvelode::marvelodeTimer, [&](const std::string& complaint) { complaints.push_back(complaint); }};
        desktop.resources = {{"Marvelode.png", PictureFile{{512, 832}}},
                             {"MarvelodeGrey.png", PictureFile{{512, 832}}},
                             {"Sonar.m4a", SoundFile{}},
                             {"Bowl.m4a", SoundFile{}}};
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

TEST(AStory, SeesWhatEscapesFromTheProgram) {
    platform::simulated::SimulatedDesktop desktop{
        [](int, const char* const*) -> int { throw std::runtime_error{"escaped"}; },
        [](const std::string& complaint) { ADD_FAILURE() << complaint; }};
    EXPECT_THROW(desktop.launch(), std::runtime_error);
    EXPECT_FALSE(desktop.isRunning());
}

} // namespace
} // namespace story
