// The resident program's side of the windows, with small scripts in place of the program that shows them: what the
// user does reaches alerts and panels, and each comes to a defined end.

#include "platform/linux/window/Protocol.hpp"
#include "tests/linux/window/ScriptedProgram.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;

using AnAlert = ScriptedProgram;
using APanel = ScriptedProgram;

TEST_F(AnAlert, GivesTheButtonThatWasPressed) {
    play("next; say \"('pressed', 1, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    play("next; say \"('pressed', 1, 1, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::SecondButtonReturn);
    EXPECT_TRUE(desktop->errors.empty());
    EXPECT_FALSE(isTicked());
}

TEST_F(AnAlert, KeepsItsCheckBoxAsTheUserLeftIt) {
    play("next; say \"('changed', 1, 2, just <true>)\"; say \"('pressed', 1, 1, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::SecondButtonReturn);
    EXPECT_TRUE(isTicked());
    play("next; say \"('changed', 1, 2, just <false>)\"; say \"('closed', 1, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_FALSE(isTicked());
}

TEST_F(AnAlert, IsStoppedWhenItIsClosed) {
    play("next; say \"('closed', 1, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(AnAlert, ReturnsWhenEverythingCloses) {
    play("next; next");
    const Later terminate{20ms, [&] { desktop->terminate(); }};
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(AnAlert, IsStoppedWhenTheProgramTalksNonsense) {
    for (const std::string& nonsense :
         {"garbage"s, "('pressed', 1, 2, nothing)"s, "('changed', 1, 1, just <true>)"s,
          "('changed', 1, 2, just <int64 1>)"s, "('submitted', 1, 0, nothing)"s, "('pressed', 1, 0"s,
          std::string(100'000, 'x')}) {
        SCOPED_TRACE(nonsense.substr(0, 100));
        play("next; say \"" + nonsense + "\"; exec sleep 60");
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
        EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
        EXPECT_EQ(desktop->errors.size(), 1U);
        EXPECT_FALSE(isTicked());
    }
}

TEST_F(APanel, FollowsTheUserAndAnswersWithFreshValues) {
    play("next; say \"('changed', 1, 0, just <int64 25>)\"\n"
         "next; say \"('changed', 1, 1, just <true>)\"\n"
         "next; say \"('changed', 1, 2, just <int64 1>)\"\n"
         "next; say \"('submitted', 1, 0, nothing)\"\n"
         "next; say \"('pressed', 1, 3, nothing)\"\n"
         "next; say \"('pressed', 1, 4, nothing)\"; next");
    runPanel(form());
    EXPECT_EQ(*minutes, 25);
    EXPECT_TRUE(*isOn);
    EXPECT_EQ(*sound, 1);
    EXPECT_EQ(actions, (std::vector<std::string>{"play", "submit", "press"}));
    EXPECT_EQ(host.closings, 1);
    const auto requests = linesOf("requests");
    ASSERT_GE(requests.size(), 6U);
    EXPECT_EQ(requests[1], "('values', <(uint32 1, [<int64 25>, <false>, <int64 0>, <false>, <false>])>)");
    EXPECT_EQ(requests[5], "('values', <(uint32 1, [<int64 25>, <true>, <int64 1>, <false>, <false>])>)");
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(APanel, IsModalAndAskedFor) {
    play("next; say \"('closed', 1, 0, nothing)\"; next");
    runPanel(form());
    const auto request = decodeRequest(linesOf("requests").at(0), [](const Event&) {});
    ASSERT_TRUE(request && std::holds_alternative<PanelRequest>(*request));
    EXPECT_TRUE(std::get<PanelRequest>(*request).isModal);
    EXPECT_FALSE(std::get<PanelRequest>(*request).comesUnasked);
}

TEST_F(APanel, IsToldWhenTheUserClosesIt) {
    play("next; say \"('closed', 1, 0, nothing)\"; next");
    runPanel(form());
    EXPECT_EQ(host.closings, 1);
}

TEST_F(APanel, IsToldWhenTheProgramDies) {
    play("next; kill -KILL $$");
    runPanel(form());
    EXPECT_EQ(host.closings, 1);
    EXPECT_EQ(desktop->errors.size(), 1U);
}

TEST_F(APanel, IsToldWhenTheProgramCannotStart) {
    desktop.emplace(folder / "missing");
    runPanel(form());
    EXPECT_EQ(host.closings, 1);
    EXPECT_EQ(desktop->errors.size(), 1U);
}

TEST_F(APanel, ReturnsWithoutADelegateToo) {
    play("next; say \"('closed', 1, 0, nothing)\"; next");
    panel.delegate = nullptr;
    runPanel(form());
}

TEST_F(APanel, ReturnsWhenEverythingClosesWithoutBeingTold) {
    play("next; next");
    const Later terminate{20ms, [&] { desktop->terminate(); }};
    runPanel(form());
    EXPECT_EQ(host.closings, 0);
}

TEST_F(APanel, CanBeShownAgain) {
    play("next; say \"('closed', $(wc -l <starts), 0, nothing)\"; next");
    runPanel(form());
    runPanel(form());
    EXPECT_EQ(host.closings, 2);
    EXPECT_EQ(linesOf("starts").size(), 2U);
}

TEST_F(APanel, IsToldWhenTheProgramTalksNonsense) {
    for (const char* nonsense : {"('pressed', 1, 5, nothing)", "('pressed', 1, 0, nothing)",
                                 "('submitted', 1, 3, nothing)", "('changed', 1, 0, just <true>)",
                                 "('changed', 1, 1, just <int64 1>)", "('changed', 1, 2, just <int64 2>)",
                                 "('changed', 1, 2, just <int64 -1>)", "('changed', 1, 3, just <true>)"}) {
        SCOPED_TRACE(nonsense);
        play("next; say \""s + nonsense + "\"; exec sleep 60");
        host.closings = 0;
        runPanel(form());
        EXPECT_EQ(host.closings, 1);
        EXPECT_EQ(desktop->errors.size(), 1U);
    }
    EXPECT_EQ(*minutes, 10);
    EXPECT_FALSE(*isOn);
    EXPECT_EQ(*sound, 0);
    EXPECT_TRUE(actions.empty());
}

/// A panel whose button runs an alert, and what the alert answered.
class AnAlertOnAPanel : public ScriptedProgram {
protected:
    void run() {
        runPanel(VStack({Button("OK", 5, [this] { answer = alert.runModal(); }), Toggle("", isOn.binding())}));
    }

    int answer = 0;
};

TEST_F(AnAlertOnAPanel, IsShownByTheSameProgramAndLeavesThePanelOpen) {
    play("next; say \"('pressed', 1, 0, nothing)\"\n"
         "next; say \"('pressed', 2, 1, nothing)\"\n"
         "next; next; say \"('changed', 1, 1, just <true>)\"\n"
         "next; say \"('closed', 1, 0, nothing)\"; next");
    run();
    EXPECT_EQ(answer, NSAlert::SecondButtonReturn);
    EXPECT_EQ(linesOf("starts").size(), 1U);
    EXPECT_TRUE(*isOn);
    const auto requests = linesOf("requests");
    ASSERT_GE(requests.size(), 4U);
    EXPECT_EQ(requests[2], "('close', <uint32 2>)");
    EXPECT_EQ(host.closings, 1);
}

TEST_F(AnAlertOnAPanel, KeepsThePanelFromTakingInput) {
    play("next; say \"('pressed', 1, 0, nothing)\"\n"
         "next; say \"('pressed', 1, 0, nothing)\"; say \"('closed', 1, 0, nothing)\"\n"
         "say \"('pressed', 2, 0, nothing)\"; next; next; say \"('changed', 1, 1, just <true>)\"\n"
         "next; say \"('closed', 1, 0, nothing)\"; next");
    run();
    EXPECT_EQ(answer, NSAlert::FirstButtonReturn);
    const auto requests = linesOf("requests");
    EXPECT_EQ(std::count_if(requests.begin(), requests.end(),
                            [](const std::string& request) { return request.starts_with("('alert'"); }),
              1);
    EXPECT_TRUE(*isOn);
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(AnAlertOnAPanel, LosesNoChangeThatWasMadeAsItOpened) {
    play("next; say \"('pressed', 1, 0, nothing)\"\n"
         "next; say \"('changed', 1, 1, just <true>)\"; say \"('pressed', 2, 0, nothing)\"\n"
         "next; next; next; say \"('closed', 1, 0, nothing)\"; next");
    run();
    EXPECT_EQ(answer, NSAlert::FirstButtonReturn);
    EXPECT_TRUE(*isOn);
    const auto requests = linesOf("requests");
    ASSERT_GE(requests.size(), 5U);
    EXPECT_EQ(requests[4], "('values', <(uint32 1, [<false>, <true>])>)");
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(AnAlertOnAPanel, IsGivenUpWhenThePanelGoesOnChanging) {
    play("next; say \"('pressed', 1, 0, nothing)\"; next\n"
         "for change in $(seq 200); do say \"('changed', 1, 1, just <true>)\"; done; exec sleep 20");
    run();
    EXPECT_EQ(answer, NSAlert::Stopped);
    EXPECT_EQ(desktop->errors,
              std::vector<std::string>{"the window program told of something that cannot be done"});
}

TEST_F(AnAlertOnAPanel, LosesNoChangeEvenIfTheProgramDies) {
    play("next; say \"('pressed', 1, 0, nothing)\"\n"
         "next; say \"('changed', 1, 1, just <true>)\"; kill -KILL $$");
    run();
    EXPECT_EQ(answer, NSAlert::Stopped);
    EXPECT_TRUE(*isOn);
}

TEST_F(AnAlertOnAPanel, GoesAwayWithThePanelWhenTheProgramDies) {
    play("next; say \"('pressed', 1, 0, nothing)\"; next; kill -KILL $$");
    run();
    EXPECT_EQ(answer, NSAlert::Stopped);
    EXPECT_EQ(host.closings, 1);
    EXPECT_EQ(desktop->errors.size(), 1U);
    EXPECT_EQ(linesOf("starts").size(), 1U);
}

TEST_F(AnAlertOnAPanel, GoesAwayWithThePanelWhenEverythingCloses) {
    play("next; say \"('pressed', 1, 0, nothing)\"; next; next");
    const Once terminate{[&] { return linesOf("requests").size() == 2; }, [&] { desktop->terminate(); }};
    run();
    EXPECT_EQ(answer, NSAlert::Stopped);
    EXPECT_EQ(host.closings, 0);
}

TEST_F(AnAlertOnAPanel, StaysWhenOnlyThePanelIsStopped) {
    play("next; say \"('pressed', 1, 0, nothing)\"; next; sleep 0.2; say \"('pressed', 2, 0, nothing)\"; next");
    const Once stop{[&] { return linesOf("requests").size() == 2; }, [&] { desktop->stopModal(); }};
    run();
    EXPECT_EQ(answer, NSAlert::FirstButtonReturn);
    EXPECT_EQ(host.closings, 0);
}

TEST(NoWindow, StoppingDoesNothing) {
    BareDesktop desktop{"/nowhere"};
    desktop.stopModal();
    desktop.terminate();
    EXPECT_TRUE(desktop.errors.empty());
}

} // namespace
} // namespace platform::linux
