// The whole program in odd circumstances: what it is started with or without, and what is taken from it meanwhile.

#include "platform/linux/window/Protocol.hpp"
#include "tests/support/MisbehavingBus.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <dlfcn.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/auxv.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

constexpr const char* name = "org.marvelode.Timer";
constexpr const char* object = "/org/marvelode/Timer";

std::string contentOf(const fs::path& path) {
    std::ifstream stream{path, std::ios::binary};
    return {std::istreambuf_iterator{stream}, {}};
}

class MainTest : public testing::Test {
protected:
    MainTest() {
        fs::create_directories(settings.parent_path());
        connectToSystem(); // which is said to be there from here on
    }
    void TearDown() override {
        if (process != 0) {
            kill(process, SIGKILL);
            waitpid(process, nullptr, 0);
        }
    }

    using Preparation = void (*)();
    static void nothing() {}

    /// Starts `command`, in a process that has run `prepare` before, and waits until it is on the bus.
    void start(std::vector<std::string> command, Preparation prepare = nothing) {
        launch(std::move(command), prepare);
        EXPECT_TRUE(await([&] { return !property("State").empty() || !isRunning(); }));
        EXPECT_TRUE(isRunning()) << contentOf(folder.path / "output");
    }
    void start(Preparation prepare = nothing) { start({PROGRAM}, prepare); }

    void launch(std::vector<std::string> command, Preparation prepare = nothing) {
        std::vector<char*> arguments;
        for (std::string& argument : command) {
            arguments.push_back(argument.data());
        }
        arguments.push_back(nullptr);
        g_setenv("XDG_CONFIG_HOME", folder.path.c_str(), TRUE);
        g_unsetenv("G_SLICE");
        process = fork();
        if (process == 0) {
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            const int output = open((folder.path / "output").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(output, STDOUT_FILENO);
            dup2(output, STDERR_FILENO);
            close(output);
            prepare();
            execv(arguments[0], arguments.data());
            _exit(127);
        }
    }

    /// Asks again and again, for a few seconds.
    static bool await(const std::function<bool()>& holds) {
        return runLoopUntil([&] {
            const bool isDone = holds();
            runLoopFor(std::chrono::milliseconds{isDone ? 0 : 5});
            g_main_context_wakeup(nullptr);
            return isDone;
        });
    }

    bool isRunning() {
        if (process != 0 && waitpid(process, &status, WNOHANG) == process) {
            process = 0;
        }
        return process != 0;
    }

    std::string property(const char* property) {
        std::string error;
        const VariantHandle answer = call(bus.get(), name, object, "org.freedesktop.DBus.Properties", "Get",
                                          g_variant_new("(ss)", name, property), &error);
        return answer ? TextHandle{g_variant_print(answer.get(), FALSE)}.get() : "";
    }
    bool awaitProperty(const char* which, const std::string& value) {
        return await([&] { return property(which) == value || !isRunning(); }) && isRunning();
    }
    bool run(const char* method) {
        std::string error;
        call(bus.get(), name, object, name, method, nullptr, &error);
        return error.empty();
    }
    /// Whether the environment in which the kernel started the program is that of its second start.
    bool wasStartedAnew() const {
        return contentOf("/proc/" + std::to_string(process) + "/environ").find("G_SLICE=") != std::string::npos;
    }
    void quit() {
        EXPECT_TRUE(run("Quit")) << "the call was not answered";
        EXPECT_TRUE(await([&] { return !isRunning(); })) << "it does not end";
        EXPECT_EQ(status, 0);
    }

    TemporaryFolder folder;
    const fs::path settings = folder.path / "marvelode-timer/settings";
    ObjectHandle<GDBusConnection> bus = connectToSession();
    pid_t process = 0;
    int status = -1;
};

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
    kill(process, SIGHUP);
    EXPECT_TRUE(await([&] { return !isRunning(); }));
    EXPECT_EQ(status, 0);
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

/// The program, installed beside a script that takes the place of the one that shows windows.
class SecondStartTest : public MainTest {
protected:
    SecondStartTest() {
        fs::create_directories(folder.path / "bin");
        fs::create_directories(folder.path / "libexec/marvelode-timer");
        fs::copy_file(PROGRAM, program);
        fs::create_symlink(fs::path{PROGRAM}.parent_path().parent_path() / "share", folder.path / "share");
    }

    /// The script first notes its display.
    void installWindowProgram(const std::string& commands) {
        const fs::path script = folder.write("libexec/marvelode-timer/marvelode-timer-window",
                                             "#!/bin/sh\necho $DISPLAY >'" + display.string() + "'\n" + commands);
        fs::permissions(script, fs::perms::owner_all);
    }

    /// Starts the program once more, on the display :7; returns its status.
    int startOnceMore() {
        const std::string command = "DISPLAY=:7 XDG_CONFIG_HOME='" + folder.path.string() + "' timeout 20 '" +
                                    program.string() + "' >'" + (folder.path / "second").string() + "' 2>&1";
        return std::system(command.c_str());
    }
    std::string saidBySecond() const { return contentOf(folder.path / "second"); }

    const fs::path program = folder.path / "bin/marvelode-timer";
    const fs::path display = folder.path / "display";
};

TEST_F(SecondStartTest, HasTheMenuShownOnItsOwnDisplay) {
    const std::string shown = encode(Event{Event::Kind::Shown, 1, 0, {}});
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

TEST_F(MainTest, ItStartsAnewOnlyWhereGlibHasPools) {
    start();
    EXPECT_EQ(wasStartedAnew(), glib_minor_version < 76);
    quit();
    start([] { g_setenv("LD_PRELOAD", GLIB_WITHOUT_POOLS, TRUE); });
    EXPECT_FALSE(wasStartedAnew());
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
    testing::Combine(testing::Values(MisbehavingBus::Step::Greeting, MisbehavingBus::Step::Hello,
                                     MisbehavingBus::Step::Subscription),
                     testing::Values(MisbehavingBus::Trouble::Silence, MisbehavingBus::Trouble::Lateness,
                                     MisbehavingBus::Trouble::Nonsense, MisbehavingBus::Trouble::Death)));

TEST_F(MainTest, ItEndsEvenIfNoThreadCanBeHadThen) {
    g_setenv("LD_PRELOAD", FEW_THREADS, TRUE);
    start();
    g_unsetenv("LD_PRELOAD");
    quit();
}

} // namespace
} // namespace platform::linux
