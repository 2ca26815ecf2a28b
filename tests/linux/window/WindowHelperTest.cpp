// The resident program's side of the windows, with small scripts in place of the program that shows them: whatever
// that program does, each window comes to a defined end, and nothing of it stays behind.

#include "tests/support/BareDesktop.hpp"
#include "tests/support/ShortSeconds.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
namespace fs = std::filesystem;

/// Closes its panel's modal session, and counts.
class Host : public NSWindowDelegate {
public:
    void windowWillClose() override {
        ++closings;
        NSApplication::shared().stopModal();
    }

    int closings = 0;
};

class WindowHelperTest : public testing::Test {
protected:
    WindowHelperTest() {
        std::string name = (fs::temp_directory_path() / "marvelode-windows-XXXXXX").string();
        folder = mkdtemp(name.data());
        alert.addButton("Restart");
        alert.addButton("Snooze");
        alert.setShowsSuppressionButton(true);
        panel.delegate = &host;
    }
    void TearDown() override {
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process or a zombie was left behind";
        EXPECT_EQ(errno, ECHILD);
        fs::remove_all(folder);
    }

    /// The program that shows windows is this shell script. Its standard input and output are the socket; `next`
    /// waits for a request, which it appends to the file "requests", and `say` tells an event.
    void play(const std::string& script) {
        const fs::path program = folder / "program";
        std::ofstream{program}
            << "#!/bin/sh\n"
               "cd '"
            << folder.string()
            << "'\n"
               "echo start >>starts\n"
               "next() { dd bs=65536 count=1 2>/dev/null >request; cat request >>requests; echo >>requests; }\n"
               "say() { printf \"$1\" >&0; }\n"
            << script;
        fs::permissions(program, fs::perms::owner_all);
        desktop.emplace(program);
    }

    std::vector<std::string> linesOf(const char* file) const {
        std::ifstream stream{folder / file};
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    bool isTicked() const { return alert.suppressionButton()->state == NSSuppressionButton::StateValue::On; }

    fs::path folder;
    std::optional<BareDesktop> desktop;
    NSAlert alert;
    NSPanel panel;
    Host host;
    State<std::int64_t> minutes{10};
    State<bool> isOn{false};
    State<int> sound{0};
    std::vector<std::string> actions;

    View form() {
        const auto action = [this](const char* name) { return [this, name] { actions.emplace_back(name); }; };
        return VStack({
            TextField("600", minutes.binding(), {}).onSubmit(action("submit")),
            Toggle("", isOn.binding()),
            Picker<int>("", sound.binding(), {{"Sonar", 0}, {"Bowl", 1}}).onChange(action("play")),
            Button("Other", 5, action("press")),
            Button("OK", 5, [this] { panel.close(); }),
        });
    }

    void runPanel(const View& content) {
        panel.contentView = std::make_shared<NSHostingView>(NSHostingView{[&] { return content; }});
        NSApplication::shared().runModal(panel);
    }
};

/// Calls something from the main loop after a while.
class Later {
public:
    Later(std::chrono::milliseconds delay, std::function<void()> deed)
        : _deed{std::move(deed)} {
        const auto call = [](gpointer self) -> gboolean {
            static_cast<Later*>(self)->_deed();
            return G_SOURCE_REMOVE;
        };
        g_timeout_add(static_cast<guint>(delay.count()), call, this);
    }

private:
    std::function<void()> _deed;
};

/// Calls something from the main loop as soon as a condition holds there.
class Once {
public:
    Once(std::function<bool()> condition, std::function<void()> deed)
        : _condition{std::move(condition)}
        , _deed{std::move(deed)} {
        const auto call = [](gpointer data) -> gboolean {
            const auto* self = static_cast<Once*>(data);
            const bool isTime = self->_condition();
            if (isTime) {
                self->_deed();
            }
            return isTime ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
        };
        g_timeout_add(1, call, this);
    }

private:
    std::function<bool()> _condition;
    std::function<void()> _deed;
};

using AnAlert = WindowHelperTest;
using APanel = WindowHelperTest;

TEST_F(AnAlert, GivesTheButtonThatWasPressed) {
    play("next; say \"('pressed', 1, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    play("next; say \"('pressed', 1, 1, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::SecondButtonReturn);
    EXPECT_TRUE(desktop->errors.empty());
    EXPECT_FALSE(isTicked());
}

TEST_F(AnAlert, GivesItsAnswerEvenIfTheProgramDiesRightAfterIt) {
    play("next; say \"('pressed', 1, 0, nothing)\"");
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
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

TEST_F(AnAlert, IsStoppedWhenTheProgramDies) {
    play("next; kill -KILL $$");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_EQ(desktop->errors, std::vector<std::string>{"the window program ended before its window was closed"});
}

TEST_F(AnAlert, KeepsTheTickMadeBeforeTheProgramDied) {
    play("next; say \"('changed', 1, 2, just <true>)\"; kill -KILL $$");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_TRUE(isTicked());
}

TEST_F(AnAlert, LeavesTheTokenToThePanelThatTheUserAskedFor) {
    play("echo \"[$XDG_ACTIVATION_TOKEN]\" >>tokens; next; say \"('closed', $(wc -l <tokens), 0, nothing)\"; next");
    desktop->activationToken.keep("of-the-click");
    alert.runModal();
    runPanel(form());
    runPanel(form());
    EXPECT_EQ(linesOf("tokens"), (std::vector<std::string>{"[]", "[of-the-click]", "[]"}));
}

TEST_F(AnAlert, IsStoppedWhenTheProgramCannotStart) {
    desktop.emplace(folder / "missing");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    ASSERT_EQ(desktop->errors.size(), 1U);
    EXPECT_EQ(desktop->errors[0].find("no window can be shown"), 0U) << desktop->errors[0];
    EXPECT_NE(desktop->errors[0].find("missing"), std::string::npos) << desktop->errors[0];
}

TEST_F(AnAlert, CanBeRunAgainAfterTheProgramDied) {
    play("next; [ $(wc -l <starts) = 1 ] && exit; say \"('pressed', 2, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
}

TEST_F(AnAlert, IsStoppedWhenTheProgramIsNotDoneClosing) {
    play("next; say \"('pressed', 1, 0, nothing)\"; exec sleep 60");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
}

TEST_F(AnAlert, IsStoppedWhenTheProgramStopsBeforeItShowsAnything) {
    const ShortSeconds seconds{20ms};
    play("next; kill -STOP $$");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_EQ(desktop->errors,
              std::vector<std::string>{"the window program has shown no window for half a minute"});
}

TEST_F(AnAlert, WaitsAsLongAsItTakesOnceItIsShown) {
    const ShortSeconds seconds{20ms};
    play("next; say \"('shown', 1, 0, nothing)\"; sleep 1; say \"('pressed', 1, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(AnAlert, StaysIfItWasShownWhileThisProgramStoodStill) {
    const ShortSeconds seconds{20ms};
    play("next; say \"('shown', 1, 0, nothing)\"; sleep 1; say \"('pressed', 1, 0, nothing)\"; next");
    const Later standStill{10ms, [] { std::this_thread::sleep_for(900ms); }};
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
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
class AnAlertOnAPanel : public WindowHelperTest {
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
