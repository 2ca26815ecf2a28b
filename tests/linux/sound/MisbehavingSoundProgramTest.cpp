// A sound program that misbehaves in every way at every step. Whatever it does, it is told to the log at most once,
// nothing is left behind, and the same sound can be played again.

#include "platform/linux/sound/SoundPlayer.hpp"
#include "tests/support/CollectedErrors.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <glib.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <filesystem>
#include <iterator>
#include <ostream>
#include <string>
#include <tuple>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

/// Shell commands, and what they are called.
struct Commands {
    const char* name;
    const char* text;

    friend std::ostream& operator<<(std::ostream& stream, const Commands& commands) {
        return stream << commands.name;
    }
};

constexpr std::array steps{
    Commands{"AtItsStart", ""},
    Commands{"WhilePlaying", "sleep 0.05"},
    Commands{"Complaining", "echo 'There is no sound card.' >&2"},
};

constexpr std::array misdeeds{
    Commands{"Silent", "exec sleep 20"},
    Commands{"Stopped", "kill -STOP $$"},
    Commands{"Late", "sleep 0.15; exit 1"},
    Commands{"Nonsense", "head -c 3000 /dev/urandom >&2; exit 1"},
    Commands{"LongLine", "head -c 200000 /dev/zero >&2; exit 1"},
    Commands{"Flood", "exec yes >&2"},
    Commands{"Ends", "exit 0"},
    Commands{"Fails", "exit 77"},
    Commands{"Killed", "kill -KILL $$"},
    Commands{"ClosesItsEnd", "exec 2>&-; exec sleep 20"},
    Commands{"LeavesItsEndOpen", "sleep 2 & exit 1"},
    Commands{"LeavesAFloodBehind", "yes >&2 & exit 1"},
};

class MisbehavingSoundProgram : public testing::TestWithParam<std::tuple<Commands, Commands>> {
protected:
    void TearDown() override {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process or a zombie was left behind";
        EXPECT_EQ(errno, ECHILD);
    }

    std::filesystem::path program() const {
        const auto& [step, misdeed] = GetParam();
        auto script = folder.write("program", std::string{"#!/bin/sh\n"} + step.text + '\n' + misdeed.text + '\n');
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        return script;
    }

    static auto openDescriptors() {
        g_main_context_iteration(nullptr, FALSE); // has one of its own from its first use on
        const std::filesystem::directory_iterator descriptors{"/proc/self/fd"};
        return std::distance(begin(descriptors), end(descriptors));
    }

    /// Runs the main loop until the sound could be started again. Returns false if that takes unreasonably long.
    static bool playsAgain(SoundPlayer& player) {
        const auto deadline = std::chrono::steady_clock::now() + 10s;
        while (!player.play("/Bowl.m4a")) {
            if (std::chrono::steady_clock::now() > deadline) {
                return false;
            }
            g_main_context_iteration(nullptr, FALSE);
            g_usleep(1000);
        }
        return true;
    }

    const TemporaryFolder folder;
    SessionEnvironment session;
    CollectedErrors log;
};

TEST_P(MisbehavingSoundProgram, CostsNoMoreThanItsSound) {
    const HelperProgram helper{program(), session};
    const auto before = openDescriptors();
    {
        SoundPlayer player{helper, log, 200ms};
        EXPECT_TRUE(player.play("/Bowl.m4a"));
        EXPECT_TRUE(playsAgain(player));
        EXPECT_LE(log.problems.size(), 1U);
    }
    EXPECT_EQ(openDescriptors(), before);
}

INSTANTIATE_TEST_SUITE_P(AtEachStep, MisbehavingSoundProgram,
                         testing::Combine(testing::ValuesIn(steps), testing::ValuesIn(misdeeds)),
                         [](const auto& test) {
                             return std::string{std::get<0>(test.param).name} + std::get<1>(test.param).name;
                         });

} // namespace
} // namespace platform::linux
