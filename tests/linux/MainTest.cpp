// The whole program in odd circumstances: what it is started with or without, and what is taken from it meanwhile.

#include "tests/linux/MainTest.hpp"

#include "tests/support/MisbehavingBus.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/auxv.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <tuple>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

TEST_F(MainTest, AFileThatCannotBeReadAtTheStartIsNoFirstRunAndLosesNoSetting) {
    fs::create_directory(settings); // unreadable even for root
    start();
    EXPECT_EQ(property("Popups"), "(<true>,)") << "no reminder is lost meanwhile";
    fs::remove(settings);
    folder.write("marvelode-timer/settings", "[Settings]\nVersion='0.9'\nPopupAlerts=false\nAutoRestart=false\n");
    EXPECT_TRUE(awaitProperty("Popups", "(<false>,)"));
    quit();
    EXPECT_NE(contentOf(settings).find("PopupAlerts=false\nAutoRestart=false\n"), std::string::npos)
        << contentOf(settings);
}

TEST_F(MainTest, ARepairedFileThatIsPutBackKeepsItsSettings) {
    folder.write("marvelode-timer/settings", "[Settings\n");
    start();
    EXPECT_EQ(property("Popups"), "(<true>,)");
    folder.write("marvelode-timer/settings", "[Settings]\nVersion='0.9'\nPopupAlerts=false\n");
    EXPECT_TRUE(awaitProperty("Popups", "(<false>,)"));
    quit();
    EXPECT_NE(contentOf(settings).find("PopupAlerts=false\n"), std::string::npos) << contentOf(settings);
}

TEST_F(MainTest, ItOutlivesItsTerminalIfItWasToldSo) {
    start([] { std::signal(SIGHUP, SIG_IGN); });
    kill(process, SIGHUP);
    EXPECT_TRUE(run("ToggleMute"));
    EXPECT_EQ(property("Muted"), "(<true>,)");
    quit();
}

TEST_F(MainTest, ItEndsWithItsTerminalOtherwise) {
    start();
    endBy(SIGHUP);
}

TEST_F(MainTest, ItsMessagesGoNowhereWhereItHasNoStandardDescriptors) {
    fs::create_directory(settings); // which it complains of
    start([] {
        for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            close(descriptor);
        }
    });
    EXPECT_TRUE(run("ToggleMute"));
    for (const char* descriptor : {"0", "1", "2"}) {
        EXPECT_EQ(fs::read_symlink("/proc/" + std::to_string(process) + "/fd/" + descriptor), "/dev/null");
    }
    quit();
}

TEST_F(MainTest, ItCanBeStartedByTheDynamicLoader) {
    Dl_info loader{};
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the kernel tells the address as a number
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(getauxval(AT_BASE)), &loader), 0);
    start({loader.dli_fname, PROGRAM, "-TimerInterval", "1500"});
    EXPECT_EQ(property("Text"), "(<'25m'>,)");
    quit();
}

TEST_F(MainTest, RemovingThePackageCostsNoReminder) {
    const fs::path program = folder.path / "usr/bin/marvelode-timer";
    fs::create_directories(program.parent_path());
    fs::copy_file(PROGRAM, program);
    fs::copy(fs::path{PROGRAM}.parent_path().parent_path() / "share", folder.path / "usr/share",
             fs::copy_options::recursive);
    folder.write("marvelode-timer/settings", "[Settings]\nVersion='1.0.0'\nMute=true\n"); // and no popups
    start({program, "-TimerInterval", "2"});
    fs::remove_all(folder.path / "usr");
    EXPECT_TRUE(awaitProperty("State", "(<'Reminding'>,)"));
    quit();
}

TEST_F(MainTest, GlibKeepsNoPools) {
    start([] { g_setenv("LD_PRELOAD", TELL_OF_POOLS, TRUE); });
    EXPECT_EQ(contentOf(folder.path / "output"), "GLib keeps no pools\n");
    quit();
}

class BadSessionBusTest
    : public MainTest,
      public testing::WithParamInterface<std::tuple<MisbehavingBus::Step, MisbehavingBus::Trouble>> {};

TEST_P(BadSessionBusTest, IsNoReasonToWaitForEver) {
    const auto [step, trouble] = GetParam();
    const MisbehavingBus bad{step, trouble};
    const std::string good = g_getenv("DBUS_SESSION_BUS_ADDRESS");
    g_setenv("DBUS_SESSION_BUS_ADDRESS", bad.address().c_str(), TRUE);
    g_setenv("LD_PRELOAD", QUICK_ALARM, TRUE);
    launch({PROGRAM});
    g_unsetenv("LD_PRELOAD");
    g_setenv("DBUS_SESSION_BUS_ADDRESS", good.c_str(), TRUE);
    EXPECT_TRUE(await([&] { return !isRunning(); }));
    EXPECT_TRUE(bad.isInTrouble()) << contentOf(folder.path / "output");
    EXPECT_EQ(WEXITSTATUS(status), EXIT_FAILURE);
    EXPECT_NE(contentOf(folder.path / "output").find("session bus"), std::string::npos)
        << contentOf(folder.path / "output");
}

INSTANTIATE_TEST_SUITE_P(
    AtEachStep, BadSessionBusTest,
    testing::Combine(testing::Values(MisbehavingBus::Step::Greeting, MisbehavingBus::Step::Hello),
                     testing::Values(MisbehavingBus::Trouble::Silence, MisbehavingBus::Trouble::Lateness,
                                     MisbehavingBus::Trouble::Nonsense, MisbehavingBus::Trouble::Death)));

INSTANTIATE_TEST_SUITE_P( // where lateness does no harm
    AtItsName, BadSessionBusTest,
    testing::Combine(testing::Values(MisbehavingBus::Step::Name),
                     testing::Values(MisbehavingBus::Trouble::Silence, MisbehavingBus::Trouble::Nonsense,
                                     MisbehavingBus::Trouble::Death)));

TEST_F(MainTest, ItsFolderMayTakeItsTimeAsLongAsTheSessionBusAnswers) {
    g_setenv("LD_PRELOAD", QUICK_ALARM " " SLOW_FOLDER, TRUE);
    start();
    g_unsetenv("LD_PRELOAD");
    quit();
}

TEST_F(MainTest, ItsSecondsAreNegativeFromTheFirstMomentThatTheBreakIsDue) {
    folder.write("marvelode-timer/settings", "[Settings]\nVersion='1.0.0'\nMute=true\n"); // and no popups
    start({PROGRAM, "-TimerInterval", "1"});
    EXPECT_TRUE(awaitProperty("State", "(<'Reminding'>,)"));
    EXPECT_NE(property("RemainingSeconds").find('-'), std::string::npos);
    quit();
}

TEST_F(MainTest, ADiagnosisWithArgumentsIsRefusedAndStartsNoTimer) {
    launch({PROGRAM, "--diagnose", "more"});
    EXPECT_TRUE(await([&] { return !isRunning(); })) << "a timer runs";
    EXPECT_NE(status, 0);
    EXPECT_EQ(contentOf(folder.path / "output"), "marvelode-timer: --diagnose takes no argument.\n");
}

TEST_F(MainTest, ItEndsEvenIfNoThreadCanBeHadThen) {
    start();
    g_setenv("MOST_THREADS", std::to_string(threadsOfGlibs()).c_str(), TRUE);
    quit();
    g_setenv("LD_PRELOAD", FEW_THREADS, TRUE);
    start();
    g_unsetenv("LD_PRELOAD");
    quit();
}

} // namespace
} // namespace platform::linux
