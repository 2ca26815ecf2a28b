// A window program that misbehaves in every way at every step of its protocol. Whatever it does, the window ends in
// time, nothing is left behind, and the next window is answered.

#include "platform/linux/glib/DelayedCall.hpp"
#include "tests/linux/window/ScriptedProgram.hpp"
#include "tests/support/ShortSeconds.hpp"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <filesystem>
#include <functional>
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

/// What the program has done properly before it misbehaves.
constexpr std::array alertSteps{
    Commands{"AtItsStart", ""},
    Commands{"Asked", "next"},
    Commands{"Shown", "next; say \"('shown', 1, 0, nothing)\""},
    Commands{"Ticked", "next; say \"('shown', 1, 0, nothing)\"; say \"('changed', 1, 2, just <true>)\""},
    Commands{"Answered", "next; say \"('shown', 1, 0, nothing)\"; say \"('pressed', 1, 0, nothing)\""},
    Commands{"ToldToEnd", "next; say \"('shown', 1, 0, nothing)\"; say \"('pressed', 1, 0, nothing)\"; next"},
};

constexpr std::array panelSteps{
    Commands{"AtItsStart", ""},
    Commands{"Asked", "next"},
    Commands{"Shown", "next; say \"('shown', 1, 0, nothing)\""},
    Commands{"Changed", "next; say \"('shown', 1, 0, nothing)\"; say \"('changed', 1, 1, just <true>)\"; next"},
    Commands{"ToldToEnd", "next; say \"('shown', 1, 0, nothing)\"; say \"('pressed', 1, 4, nothing)\"; next"},
};

constexpr std::array misdeeds{
    Commands{"Silent", "exec sleep 20"},
    Commands{"Stopped", "kill -STOP $$"},
    Commands{"Late", "sleep 0.2; say \"('shown', 1, 0, nothing)\"; say \"('pressed', 1, 0, nothing)\"; next"},
    Commands{"Nonsense", "say garbage; exec sleep 20"},
    Commands{"AnotherWindow", "say \"('pressed', 77, 0, nothing)\"; exec sleep 20"},
    Commands{"AnotherControl", "say \"('changed', 1, 99, just <true>)\"; exec sleep 20"},
    Commands{"TooLong", "head -c 70000 /dev/zero | dd bs=70000 iflag=fullblock >&0 2>/dev/null; exec sleep 20"},
    Commands{"Empty",
             "exec 3<&0; /usr/bin/python3 -c 'import socket; socket.socket(fileno=3).send(b\"\")'; exec sleep 20"},
    Commands{"FloodOfNonsense", "while say garbage; do :; done"},
    Commands{"FloodOfSense", "while say \"('shown', 1, 0, nothing)\"; do :; done"},
    Commands{"FloodOfTicks", "while say \"('changed', 1, 2, just <true>)\"; do :; done"},
    Commands{"Ends", "exit 0"},
    Commands{"Fails", "exit 1"},
    Commands{"Killed", "kill -KILL $$"},
    Commands{"ClosesItsSocket", "exec <&-; exec sleep 20"},
    Commands{"LeavesItsSocketOpen", "exec 3<&0; cat <&3 >/dev/null 2>&1 & exit 0"},
};

class MisbehavingWindowProgram : public ScriptedProgram,
                                 public testing::WithParamInterface<std::tuple<Commands, Commands>> {
protected:
    static auto openDescriptors() {
        g_main_context_iteration(nullptr, FALSE); // has one of its own from its first use on
        const std::filesystem::directory_iterator descriptors{"/proc/self/fd"};
        return std::distance(begin(descriptors), end(descriptors));
    }

    /// Misbehaves in the first run and does `answer` in the second.
    void misbehaveOnce(const std::string& answer) {
        const auto& [step, misdeed] = GetParam();
        play(std::string{"if [ $(wc -l <starts) = 1 ]; then\n"} + step.text + "\n" + misdeed.text + "\nfi\nnext; " +
             answer + "; next");
    }

    /// Shows a window, for which its user has little patience, and fails if that takes unreasonably long.
    void showImpatiently(const std::function<void()>& show) {
        const ShortSeconds seconds{5ms};
        DelayedCall patience;
        patience.start(300ms, [&] { desktop->terminate(); });
        const auto begin = std::chrono::steady_clock::now();
        show();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 6s);
        EXPECT_LE(desktop->errors.size(), 1U);
    }
};

class UnderAnAlert : public MisbehavingWindowProgram {};
class UnderAPanel : public MisbehavingWindowProgram {};

TEST_P(UnderAnAlert, CostsNoMoreThanThatAlert) {
    misbehaveOnce("say \"('pressed', 2, 1, nothing)\"");
    const auto before = openDescriptors();
    showImpatiently([&] { alert.runModal(); });
    EXPECT_EQ(alert.runModal(), NSAlert::SecondButtonReturn);
    EXPECT_EQ(openDescriptors(), before);
}

TEST_P(UnderAPanel, CostsNoMoreThanThatPanel) {
    misbehaveOnce("say \"('closed', 2, 0, nothing)\"");
    const auto before = openDescriptors();
    showImpatiently([&] { runPanel(form()); });
    host.closings = 0;
    runPanel(form());
    EXPECT_EQ(host.closings, 1);
    EXPECT_EQ(openDescriptors(), before);
}

const auto nameOfTest = [](const auto& test) {
    return std::string{std::get<0>(test.param).name} + std::get<1>(test.param).name;
};

INSTANTIATE_TEST_SUITE_P(AtEachStep, UnderAnAlert,
                         testing::Combine(testing::ValuesIn(alertSteps), testing::ValuesIn(misdeeds)), nameOfTest);
INSTANTIATE_TEST_SUITE_P(AtEachStep, UnderAPanel,
                         testing::Combine(testing::ValuesIn(panelSteps), testing::ValuesIn(misdeeds)), nameOfTest);

} // namespace
} // namespace platform::linux
