// The graphical session ends, and the session bus and the timer with it do not: there is nothing left to show a
// window on.

#include "tests/faults/WholeProgram.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
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
        program.install("marvelode-timer-sound", "echo $$ >>'" + sounds.string() + "'\n");
        program.store("[Settings]\nVersion='test'\nMute=false\nPopupAlerts=true\nAlertSound='Sonar'\n");
        program.start();
        program.await([this] { return !program.get("State").empty(); }, "the timer on the bus");
    }

    std::ptrdiff_t begun() const {
        std::ifstream stream{sounds};
        return std::distance(std::istream_iterator<pid_t>{stream}, {});
    }

    /// The sounds that were heard to their end: while one is heard, no other is.
    std::ptrdiff_t heard() const {
        std::ifstream stream{sounds};
        const auto hasEnded = [](pid_t player) { return kill(player, 0) != 0; };
        return std::count_if(std::istream_iterator<pid_t>{stream}, {}, hasEnded);
    }

    /// Passes one snooze after the other until one more sound has been heard, with time for it behind each.
    void hearAnother() {
        const auto before = heard();
        for (int time = 0; time < 10 && heard() == before; ++time) {
            program.passTime(snooze);
            for (int moment = 0; moment < 30 && heard() == before; ++moment) {
                runLoopFor(aMoment);
            }
        }
        EXPECT_EQ(heard(), before + 1);
    }

    void hearAllUntilItIsOver() {
        program.passTime(31);
        program.await([this] { return heard() == 1; }, "the sound of the first reminder");
        for (int reminder = 1; reminder < untilItIsOver; ++reminder) {
            hearAnother();
        }
    }

    void passSnoozes() {
        for (int time = 0; time < 5; ++time) {
            program.passTime(snooze);
            runLoopFor(aMoment);
        }
    }

    static constexpr int snooze = 6;
    static constexpr int untilItIsOver = 3;
    static constexpr std::chrono::milliseconds aMoment{100};

    TemporaryFolder folder;
    const std::filesystem::path sounds = folder.path / "sounds";
    WholeProgram program;
};

TEST_F(SessionOver, SilencesRemindersUnlessTheyAreSoundsAlone) {
    hearAllUntilItIsOver();
    passSnoozes();
    EXPECT_EQ(begun(), untilItIsOver) << "a sound was played to nobody";
    EXPECT_TRUE(program.succeeds("TogglePopups"));
    hearAnother();
    program.quit();
    EXPECT_EQ(program.status(), 0) << program.output();
}

TEST_F(SessionOver, AsksNobodyWhetherRemindersAreHeldThatNobodySees) {
    hearAllUntilItIsOver();
    const std::filesystem::path asked = folder.path / "asked";
    std::ofstream{program.home() / "config/marvelode-timer/settings", std::ios::app}
        << "\n[Desktop]\nHoldCommand=touch '" << asked.string() << "'\n";
    passSnoozes();
    EXPECT_FALSE(std::filesystem::exists(asked));
}

} // namespace
} // namespace faults
