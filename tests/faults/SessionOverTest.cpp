// The graphical session ends, and the session bus and the timer with it do not: there is nothing left to show a
// window on.

#include "tests/faults/WholeProgram.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace faults {
namespace {

class SessionOver : public testing::Test {
protected:
    SessionOver() {
        program.install("marvelode-timer-window", "printf \"('noDisplay', 0, 0, nothing)\" >&0\nexit 1\n");
        program.install("marvelode-timer-sound", "echo >>'" + sounds.string() + "'\n");
        program.store("[Settings]\nVersion='test'\nMute=false\nPopupAlerts=true\nAlertSound='Sonar'\n");
        program.start();
        program.await([this] { return !program.get("State").empty(); }, "the timer on the bus");
    }

    std::ptrdiff_t heard() const {
        std::ifstream stream{sounds};
        return std::count(std::istreambuf_iterator{stream}, {}, '\n');
    }

    /// Passes the time of one snooze after the other until a sound is heard, but no more than that many.
    void passSnoozes(int most) {
        constexpr int snooze = 6;
        constexpr std::chrono::milliseconds moment{100};
        const auto before = heard();
        for (int time = 0; time < most && heard() == before; ++time) {
            program.passTime(snooze);
            runLoopFor(moment);
        }
    }

    TemporaryFolder folder;
    const std::filesystem::path sounds = folder.path / "sounds";
    WholeProgram program;
};

TEST_F(SessionOver, SilencesRemindersUnlessTheyAreSoundsAlone) {
    constexpr int interval = 31;
    constexpr int untilItIsOver = 3;
    program.passTime(interval);
    for (int reminder = 0; reminder < untilItIsOver; ++reminder) {
        passSnoozes(50);
    }
    EXPECT_EQ(heard(), untilItIsOver);
    passSnoozes(5);
    EXPECT_EQ(heard(), untilItIsOver) << "a sound was played to nobody";
    EXPECT_TRUE(program.succeeds("TogglePopups"));
    passSnoozes(50);
    EXPECT_GT(heard(), untilItIsOver);
    program.quit();
    EXPECT_EQ(program.status(), 0) << program.output();
}

TEST_F(SessionOver, AsksNobodyWhetherRemindersAreHeldThatNobodySees) {
    program.passTime(31);
    for (int reminder = 0; reminder < 3; ++reminder) {
        passSnoozes(50);
    }
    const std::filesystem::path asked = folder.path / "asked";
    std::ofstream{program.home() / "config/marvelode-timer/settings", std::ios::app}
        << "\n[Desktop]\nHoldCommand=touch '" << asked.string() << "'\n";
    passSnoozes(5);
    EXPECT_FALSE(std::filesystem::exists(asked));
}

} // namespace
} // namespace faults
