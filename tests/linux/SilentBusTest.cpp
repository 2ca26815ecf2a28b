// A session bus that falls silent while the program runs, and neither answers nor goes away.

#include "tests/linux/ScriptedWindowsTest.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>

namespace platform::linux {
namespace {

/// Its user restarts at each reminder, which is noted.
class SilentBusTest : public ScriptedWindowsTest {
protected:
    SilentBusTest() {
        installWindowProgram("cd '" + folder.path.string() +
                             "'\n"
                             "dd bs=65536 count=1 >request 2>/dev/null\n"
                             "window=$(sed -n \"s/^('alert', <(uint32 \\([0-9]*\\),.*/\\1/p\" request)\n"
                             "[ -z \"$window\" ] && exec sleep 20\n"
                             "echo >>reminders\n"
                             "printf \"('pressed', $window, 0, nothing)\" >&0\n"
                             "dd bs=65536 count=1 >/dev/null 2>&1\n");
        folder.write("marvelode-timer/settings", "[Settings]\nVersion='1.0.0'\nMute=true\nPopupAlerts=true\n");
        start({program, "-TimerInterval", "1"});
    }

    auto reminders() const {
        const std::string lines = contentOf(folder.path / "reminders");
        return std::count(lines.begin(), lines.end(), '\n');
    }
};

TEST_F(SilentBusTest, CostsNoReminder) {
    EXPECT_TRUE(await([&] { return reminders() > 0; }));
    {
        const SilentSessionBus silence;
        const auto before = reminders();
        EXPECT_TRUE(await([&] { return reminders() >= before + 2; }));
    }
    EXPECT_NE(property("State"), "") << "and it answers again";
    quit();
}

TEST_F(SilentBusTest, KeepsTheProgramFromNoEnd) {
    const SilentSessionBus silence;
    endBy(SIGTERM);
}

} // namespace
} // namespace platform::linux
