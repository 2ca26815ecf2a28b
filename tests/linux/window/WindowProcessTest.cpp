// One run of the program that shows windows, with small scripts in its place: however it starts, talks and ends,
// nothing of it stays behind and nothing waits for it.

#include "tests/linux/window/ScriptedProgram.hpp"
#include "tests/support/ShortSeconds.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

class WindowProcessTest : public ScriptedProgram {
protected:
    int answerWithin(std::chrono::seconds limit) {
        const auto begin = std::chrono::steady_clock::now();
        const int answer = alert.runModal();
        EXPECT_LT(std::chrono::steady_clock::now() - begin, limit);
        return answer;
    }
};

TEST_F(WindowProcessTest, AnswersEvenIfItDiesRightAfterwards) {
    play("next; say \"('pressed', 1, 0, nothing)\"");
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
}

TEST_F(WindowProcessTest, EndsItsWindowWhenItDies) {
    play("next; kill -KILL $$");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_EQ(desktop->errors, std::vector<std::string>{"the window program ended before its window was closed"});
}

TEST_F(WindowProcessTest, KeepsTheTickMadeBeforeItDied) {
    play("next; say \"('changed', 1, 2, just <true>)\"; kill -KILL $$");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_TRUE(isTicked());
}

TEST_F(WindowProcessTest, GetsTheActivationTokenForThePanelThatTheUserAskedFor) {
    play("echo \"[$XDG_ACTIVATION_TOKEN]\" >>tokens; next; say \"('closed', $(wc -l <tokens), 0, nothing)\"; next");
    desktop->activationToken.keep("of-the-click");
    alert.runModal();
    runPanel(form());
    runPanel(form());
    EXPECT_EQ(linesOf("tokens"), (std::vector<std::string>{"[]", "[of-the-click]", "[]"}));
}

TEST_F(WindowProcessTest, SaysWhyItCannotStart) {
    desktop.emplace(folder / "missing");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    ASSERT_EQ(desktop->errors.size(), 1U);
    EXPECT_EQ(desktop->errors[0].find("no window can be shown"), 0U) << desktop->errors[0];
    EXPECT_NE(desktop->errors[0].find("missing"), std::string::npos) << desktop->errors[0];
}

TEST_F(WindowProcessTest, StartsAgainAfterItDied) {
    play("next; [ $(wc -l <starts) = 1 ] && exit; say \"('pressed', 2, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
}

TEST_F(WindowProcessTest, IsKilledWhenItDoesNotEnd) {
    play("next; say \"('pressed', 1, 0, nothing)\"; exec sleep 60");
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
}

TEST_F(WindowProcessTest, IsGivenUpWhenItShowsNothing) {
    const ShortSeconds seconds{20ms};
    play("next; kill -STOP $$");
    EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    EXPECT_EQ(desktop->errors,
              std::vector<std::string>{"the window program has shown no window for half a minute"});
}

TEST_F(WindowProcessTest, MayTakeAnyTimeOnceItsWindowIsShown) {
    const ShortSeconds seconds{20ms};
    play("next; say \"('shown', 1, 0, nothing)\"; sleep 1; say \"('pressed', 1, 0, nothing)\"; next");
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(WindowProcessTest, StaysIfItsWindowWasShownWhileThisProgramStoodStill) {
    const ShortSeconds seconds{20ms};
    play("next; say \"('shown', 1, 0, nothing)\"; sleep 1; say \"('pressed', 1, 0, nothing)\"; next");
    const Later standStill{10ms, [] { std::this_thread::sleep_for(900ms); }};
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    EXPECT_TRUE(desktop->errors.empty());
}

TEST_F(WindowProcessTest, IsKilledWhenItGoesOnTalking) {
    play("next; say \"('pressed', 1, 0, nothing)\"; while say \"('shown', 1, 0, nothing)\"; do :; done");
    EXPECT_EQ(answerWithin(5s), NSAlert::FirstButtonReturn);
}

TEST_F(WindowProcessTest, IsGivenUpWhenItSaysMoreThanAUserCanDo) {
    play("next; while say \"('changed', 1, 2, just <true>)\"; do :; done");
    EXPECT_EQ(answerWithin(20s), NSAlert::Stopped);
    EXPECT_EQ(desktop->errors, std::vector<std::string>{"the window program sent more than a user can do"});
}

TEST_F(WindowProcessTest, IsKnownToHaveEndedThoughAnotherProcessHasItsSocket) {
    play("next; exec 3<&0; cat <&3 >/dev/null & say \"('shown', 1, 0, nothing)\"; kill -KILL $$");
    EXPECT_EQ(answerWithin(5s), NSAlert::Stopped);
    EXPECT_EQ(desktop->errors, std::vector<std::string>{"the window program ended before its window was closed"});
}

TEST_F(WindowProcessTest, SaysThatAMessageIsTooLong) {
    play("next; next");
    alert.informativeText = std::string(70'000, 'x');
    EXPECT_EQ(answerWithin(5s), NSAlert::Stopped);
    EXPECT_EQ(desktop->errors,
              std::vector<std::string>{"the window program cannot be told what to show: Message too long"});
}

TEST_F(WindowProcessTest, IsHeardThoughItEndsWithoutReadingWhatItIsTold) {
    play("sleep 0.1; say \"('pressed', 1, 1, nothing)\"; exit");
    EXPECT_EQ(alert.runModal(), NSAlert::SecondButtonReturn);
}

TEST_F(WindowProcessTest, IsNotStartedForEachReminderOnceItFindsNoDisplay) {
    play("say \"('noDisplay', 0, 0, nothing)\"; exit 1");
    for (int reminder = 0; reminder < 23; ++reminder) {
        EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    }
    EXPECT_EQ(linesOf("starts").size(), 5U) << "three to find out, and every tenth of the others";
    EXPECT_EQ(desktop->errors.at(0), "the window program has found no display");
}

TEST_F(WindowProcessTest, IsStartedForEachReminderOnceItHasADisplayAgain) {
    play("[ \"$DISPLAY\" = :new ] || { say \"('noDisplay', 0, 0, nothing)\"; exit 1; }\n"
         "next; say \"('shown', 1, 0, nothing)\"; say \"('pressed', 4, 0, nothing)\"; next");
    for (int reminder = 0; reminder < 3; ++reminder) {
        EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    }
    EXPECT_TRUE(desktop->session.isOver());
    desktop->session.adopt({{"DISPLAY", ":new"}});
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
}

TEST_F(WindowProcessTest, ShowsAReminderWhereItWasShownBeforeIfTheDisplayOfTheLastActivationIsNotThere) {
    play("[ \"$DISPLAY\" != :bad ] || { say \"('noDisplay', 0, 0, nothing)\"; exit 1; }\n"
         "next; say \"('shown', 2, 0, nothing)\"; say \"('pressed', 2, 0, nothing)\"; next");
    desktop->session.adopt({{"DISPLAY", ":bad"}});
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
    EXPECT_EQ(linesOf("starts").size(), 2U);
}

TEST_F(WindowProcessTest, TakesADisplayThatNeverAnswersForAMissingOne) {
    const ShortSeconds seconds{10ms};
    play("[ \"$DISPLAY\" != :hung ] || exec sleep 20\n"
         "next; say \"('shown', 2, 0, nothing)\"; say \"('pressed', 2, 0, nothing)\"; next");
    desktop->session.adopt({{"DISPLAY", ":hung"}});
    EXPECT_EQ(alert.runModal(), NSAlert::FirstButtonReturn);
}

TEST_F(WindowProcessTest, IsNotStartedForEachReminderOnceItsDisplayNeverAnswers) {
    const ShortSeconds seconds{3ms};
    play("exec sleep 20");
    for (int reminder = 0; reminder < 12; ++reminder) {
        EXPECT_EQ(alert.runModal(), NSAlert::Stopped);
    }
    EXPECT_LE(linesOf("starts").size(), 3U) << "three to find out, and none of the nine that follow";
}

TEST_F(WindowProcessTest, IsStartedForEveryPanelThatTheUserAsksFor) {
    play("say \"('noDisplay', 0, 0, nothing)\"; exit 1");
    for (int panel = 0; panel < 5; ++panel) {
        runPanel(form());
    }
    EXPECT_EQ(linesOf("starts").size(), 5U);
}

} // namespace
} // namespace platform::linux
