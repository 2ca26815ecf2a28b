// Sound and window of a reminder on their way through the gate.

#include "platform/linux/holding/ReminderGate.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>

namespace platform::linux {
namespace {

class Gate : public testing::Test {
protected:
    bool sound() {
        return gate.sound([this] {
            ++sounds;
            return isSoundNew;
        });
    }

    ReminderGate::Answered answer; ///< While a question is open.
    int questions = 0;
    int sounds = 0;
    bool isSoundNew = true;
    bool isBreakDue = true;
    std::function<void()> meanwhile = [] { FAIL() << "waits"; };
    std::function<void(ReminderGate::Answered)> asked = [](const ReminderGate::Answered& told) { told({}); };
    ReminderGate gate{[this](ReminderGate::Answered told) {
                          ++questions;
                          asked(std::move(told));
                      },
                      [this] { meanwhile(); }, [this] { return isBreakDue; }};

    /// From now on the answer comes later.
    void answerLater() {
        asked = [this](ReminderGate::Answered told) { answer = std::move(told); };
    }
};

TEST_F(Gate, LetsEverythingThroughAtOnceIfNothingHolds) {
    EXPECT_TRUE(sound());
    EXPECT_EQ(sounds, 1);
    isSoundNew = false;
    EXPECT_FALSE(sound());
    EXPECT_TRUE(gate.admitsWindow());
    EXPECT_EQ(gate.reason(), "");
}

TEST_F(Gate, HoldsSoundAndWindowBackForAReason) {
    asked = [](const ReminderGate::Answered& told) { told("a call"); };
    EXPECT_FALSE(sound());
    EXPECT_EQ(gate.reason(), "a call") << "where the sound is the whole reminder";
    EXPECT_FALSE(gate.admitsWindow());
    EXPECT_EQ(sounds, 0);
    EXPECT_EQ(gate.reason(), "a call");
    gate.look();
    EXPECT_EQ(gate.reason(), "a call");
    isBreakDue = false;
    gate.look();
    EXPECT_EQ(gate.reason(), "");
}

TEST_F(Gate, AsksOnceForSoundAndWindow) {
    answerLater();
    EXPECT_TRUE(sound());
    EXPECT_EQ(sounds, 0) << "before the answer";
    meanwhile = [this] { answer({}); };
    EXPECT_TRUE(gate.admitsWindow());
    EXPECT_EQ(questions, 1);
    EXPECT_EQ(sounds, 1);
    meanwhile = [this] { answer("a call"); };
    EXPECT_FALSE(gate.admitsWindow()) << "the next reminder, which is muted";
    EXPECT_EQ(questions, 2);
    EXPECT_EQ(sounds, 1);
}

TEST_F(Gate, PlaysASoundWithoutAWindowWhenTheAnswerComes) {
    answerLater();
    EXPECT_TRUE(sound());
    answer({});
    EXPECT_EQ(sounds, 1);
    EXPECT_TRUE(sound());
    answer("a call");
    EXPECT_EQ(sounds, 1);
}

TEST_F(Gate, ShowsTheNextWindowOnceTheHoldIsOver) {
    asked = [](const ReminderGate::Answered& told) { told("a call"); };
    EXPECT_FALSE(gate.admitsWindow());
    asked = [](const ReminderGate::Answered& told) { told({}); };
    EXPECT_TRUE(gate.admitsWindow());
    EXPECT_EQ(gate.reason(), "");
}

TEST_F(Gate, LetsNothingThroughOnceTheBreakIsOver) {
    answerLater();
    EXPECT_TRUE(sound());
    meanwhile = [this] {
        isBreakDue = false; // a wake from sleep
        answer({});
    };
    EXPECT_FALSE(gate.admitsWindow());
    EXPECT_EQ(sounds, 0);
}

TEST_F(Gate, IsHeldForNoReasonThatComesAfterTheBreak) {
    answerLater();
    EXPECT_TRUE(sound());
    isBreakDue = false;
    answer("a call");
    EXPECT_EQ(gate.reason(), "");
}

TEST_F(Gate, PlaysTheSoundOfABreakThatTheCycleItselfHasEnded) {
    answerLater();
    EXPECT_TRUE(sound());
    isBreakDue = false; // in the same event, with popups off
    gate.look();
    answer({});
    EXPECT_EQ(sounds, 1);
}

TEST_F(Gate, WaitsNoLongerOnceItIsClosed) {
    answerLater();
    EXPECT_TRUE(sound());
    meanwhile = [this] { gate.close(); };
    EXPECT_FALSE(gate.admitsWindow());
    answer({});
    EXPECT_EQ(sounds, 0);
}

} // namespace
} // namespace platform::linux
