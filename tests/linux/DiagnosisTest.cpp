// What is found out for a report of a fault, and that nothing private is in it.

#include "platform/linux/Diagnosis.hpp"

#include "platform/linux/ErrorLog.hpp"
#include "tests/support/AnsweringService.hpp"
#include "tests/support/MisbehavingBus.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>

namespace platform::linux {
namespace {

class DiagnosisTest : public testing::Test {
protected:
    DiagnosisTest() {
        connectToSession();
        connectToSystem(); // which are said to be there from here on
    }

    std::string lineAbout(const std::string& subject) const {
        const Findings found = diagnose({folder.path, folder.path, folder.path / "settings"});
        const auto line =
            std::find_if(found.begin(), found.end(), [&](const auto& each) { return each.first == subject; });
        return line == found.end() ? "nothing" : line->second;
    }

    TemporaryFolder folder;
};

TEST_F(DiagnosisTest, TellsWhatIsThereAndWhatIsNot) {
    EXPECT_EQ(lineAbout("Session bus"), "answers");
    EXPECT_EQ(lineAbout("System bus"), "answers, without a login manager");
    EXPECT_EQ(lineAbout("Panel"), "none that shows status items");
    EXPECT_EQ(lineAbout("Notifications"), "no service runs");
    EXPECT_EQ(lineAbout("Windows"), "their program is missing");
    EXPECT_EQ(lineAbout("Timer"), "does not run");
    const auto manager = connectToSystem();
    takeName(manager.get(), "org.freedesktop.login1");
    EXPECT_EQ(lineAbout("System bus"), "answers, with a login manager");
}

TEST_F(DiagnosisTest, TellsOfTheSettingsFileWithoutTouchingIt) {
    const std::string path = folder.path / "settings";
    EXPECT_EQ(lineAbout("Settings"), path + " is not there");
    folder.write("settings", "[Settings]\nMute=true\nAlertSound='Bowl'\n");
    EXPECT_EQ(lineAbout("Settings"), path + " Mute=true AlertSound='Bowl'");
    folder.write("settings", "[Settings]\nMute=true\n[Desktop]\nHoldCommand=mine secret\nHoldWhile=locked\n"
                             "RestartAfterLocked=300\nVolume=0.5\nOther=1\n");
    EXPECT_EQ(lineAbout("Settings"),
              path + " Mute=true HoldWhile=locked RestartAfterLocked=300 Volume=0.5 HoldCommand is set");
    folder.write("settings", "[Settings\n");
    EXPECT_TRUE(lineAbout("Settings").starts_with(path + " is damaged: ")) << lineAbout("Settings");
    EXPECT_TRUE(std::filesystem::exists(path));
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);
    EXPECT_EQ(lineAbout("Settings"), path + " is no regular file");
}

TEST_F(DiagnosisTest, ATimerThatCannotTellOfItselfStillHasProperties) {
    AnsweringService older{connectToSession(), "org.marvelode.Timer", "/org/marvelode/Timer", "GetAll",
                           "('org.marvelode.Timer',)"};
    older.say("({'Muted': <true>},)");
    EXPECT_EQ(lineAbout("Timer"), "runs, but says nothing of itself: it may be of an older version");
    EXPECT_EQ(lineAbout("Timer properties"), "{'Muted': <true>}");
}

TEST_F(DiagnosisTest, ASilentBusIsNamedSoon) {
    const MisbehavingBus silent{MisbehavingBus::Step::Hello, MisbehavingBus::Trouble::Silence};
    const std::string before = g_getenv("DBUS_SYSTEM_BUS_ADDRESS");
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", silent.address().c_str(), TRUE);
    const auto begin = g_get_monotonic_time();
    EXPECT_EQ(lineAbout("System bus"), "does not answer");
    EXPECT_LT(g_get_monotonic_time() - begin, 10 * G_USEC_PER_SEC);
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent", TRUE);
    EXPECT_EQ(lineAbout("System bus").find("/nonexistent"), std::string::npos) << "an address is private";
    g_setenv("DBUS_SYSTEM_BUS_ADDRESS", before.c_str(), TRUE);
}

TEST_F(DiagnosisTest, NothingPrivateIsTold) {
    const std::string home = g_get_home_dir();
    const std::string user = g_get_user_name();
    EXPECT_EQ(withoutPrivateMatters("Cannot read " + home + "/x: no, " + home), "Cannot read ~/x: no, ~");
    EXPECT_EQ(withoutPrivateMatters("of " + user + ", not " + user + "s"), "of USER, not " + user + "s");
    EXPECT_EQ(withoutPrivateMatters(std::string{"on "} + g_get_host_name() + "."), "on HOST.");
    EXPECT_EQ(withoutPrivateMatters(std::string{g_get_user_runtime_dir()} + "/bus"), "$XDG_RUNTIME_DIR/bus");
    EXPECT_EQ(withoutPrivateMatters("at unix:path=/tmp/x,guid=0f;tcp:host=a,port=1 now"), "at ADDRESS;ADDRESS now");
    EXPECT_EQ(withoutPrivateMatters("\xff"), "\uFFFD");
    EXPECT_EQ(withoutPrivateMatters("plain"), "plain");
}

TEST(StandardErrorLogTest, KeepsTheLastProblems) {
    StandardErrorLog log;
    for (int number = 1; number <= 7; ++number) {
        log.add("problem " + std::to_string(number));
    }
    ASSERT_EQ(log.latest().size(), StandardErrorLog::kept);
    EXPECT_EQ(log.latest().front(), "0 s ago: problem 3");
    EXPECT_EQ(log.latest().back(), "0 s ago: problem 7");
}

} // namespace
} // namespace platform::linux
