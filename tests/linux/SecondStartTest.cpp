// The program started while it runs already, with a script in place of the one that shows windows.

#include "tests/linux/ScriptedWindowsTest.hpp"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

class SecondStartTest : public ScriptedWindowsTest {
protected:
    /// Starts the program once more, on the display :7; returns its status.
    int startOnceMore() {
        const std::string command = "DISPLAY=:7 XDG_CONFIG_HOME='" + folder.path.string() + "' timeout 20 '" +
                                    program.string() + "' >'" + (folder.path / "second").string() + "' 2>&1";
        return std::system(command.c_str());
    }
    std::string saidBySecond() const { return contentOf(folder.path / "second"); }
};

TEST_F(SecondStartTest, HasTheMenuShownOnItsOwnDisplay) {
    installWindowProgram("printf %s \"" + shown + "\" >&0\nexec sleep 20\n");
    g_setenv("DISPLAY", ":6", TRUE);
    start({program});
    EXPECT_EQ(startOnceMore(), 0);
    EXPECT_EQ(saidBySecond(), "Marvelode Timer is running already; its menu is on screen.\n")
        << contentOf(folder.path / "output");
    EXPECT_EQ(contentOf(display), ":7\n");
    quit();
}

TEST_F(SecondStartTest, DoesNotSayThatTheMenuIsOnScreenWhereItIsNot) {
    installWindowProgram("exit 1\n");
    start({program});
    EXPECT_NE(startOnceMore(), 0);
    EXPECT_NE(saidBySecond().find("cannot show its menu"), std::string::npos) << saidBySecond();
    quit();
}

TEST_F(SecondStartTest, EndsAtASignalWhileItWaits) {
    installWindowProgram("exec sleep 20\n");
    start({program});
    pid_t second = spawn({program}, "second");
    EXPECT_TRUE(await([&] { return fs::exists(display); })) << "the first was not asked for its menu";
    kill(second, SIGTERM);
    int end = 0;
    EXPECT_TRUE(await([&] {
        second = second != 0 && waitpid(second, &end, WNOHANG) == second ? 0 : second;
        return second == 0;
    }));
    EXPECT_TRUE(WIFSIGNALED(end));
    quit();
}

TEST_F(SecondStartTest, LeavesTheRemindersWhereTheyWereIfItsDisplayIsNotThere) {
    installWindowProgram("case $DISPLAY in :7) printf %s \"" + encode(Event{Event::Kind::NoDisplay, 0, 0, {}}) +
                         "\" >&0; exit 1;; esac\nexec sleep 20\n");
    g_setenv("DISPLAY", ":6", TRUE);
    start({program});
    EXPECT_NE(startOnceMore(), 0);
    EXPECT_EQ(contentOf(display), ":7\n");
    run("ShowAbout", [] {});
    EXPECT_TRUE(await([&] { return contentOf(display) == ":6\n"; }));
    endBy(SIGTERM);
}

TEST_F(SecondStartTest, ACallThatOpensAWindowIsAnsweredOnceThatIsOnTheScreen) {
    installWindowProgram("while ! [ -e '" + (folder.path / "light").string() +
                         "' ]; do sleep 0.01; done\nprintf %s \"" + shown + "\" >&0\nexec sleep 20\n");
    start({program});
    bool isAnswered = false;
    run("ShowSettings", [&] { isAnswered = true; });
    EXPECT_TRUE(await([&] { return fs::exists(display); }));
    EXPECT_EQ(property("State"), "(<'Timing'>,)");
    EXPECT_FALSE(isAnswered);
    folder.write("light", "");
    EXPECT_TRUE(await([&] { return isAnswered; }));
    endBy(SIGTERM);
}

TEST_F(SecondStartTest, ACallFailsWhoseWindowCannotBeShown) {
    installWindowProgram("exit 1\n");
    start({program});
    EXPECT_FALSE(run("ShowSettings"));
    quit();
}

} // namespace
} // namespace platform::linux
