// What the small window shows, when it opens and what its user can do in it.

#include "tests/linux/trayless/StatusWindowTest.hpp"

#include <gmock/gmock.h>

namespace platform::linux {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST_F(StatusWindowTest, ShowsWordsAndMenu) {
    window->open();
    const PanelRequest request = nextRequest();
    EXPECT_EQ(request.title, "Marvelode Timer");
    EXPECT_TRUE(request.isMovableByBackground);
    EXPECT_FALSE(request.isModal);
    EXPECT_FALSE(request.comesUnasked);
    EXPECT_THAT(textsOf(request), ElementsAre("Marvelode Timer", "Break in 9 minutes", "[About]", "[Restart timer]",
                                              "Mute", "(o )", "[Quit]", "[Nothing]", "[Hide this window]"));
    EXPECT_EQ(valuesOf(request.content).at(2), ControlValue{false});
}

TEST_F(StatusWindowTest, LeavesTheKeyboardAloneIfTheUserDidNotAskForIt) {
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, AppearsOnce) {
    window->appear();
    window->appear();
    nextRequest();
    show("Break in 8 minutes");
    EXPECT_EQ(wordsOf(nextRequest()), "Break in 8 minutes");
    EXPECT_EQ(starts(), 1U);
}

TEST_F(StatusWindowTest, OpensInFrontEachTimeItIsAskedFor) {
    window->appear();
    nextRequest();
    window->open();
    EXPECT_FALSE(nextRequest().comesUnasked);
    EXPECT_EQ(starts(), 2U);
}

TEST_F(StatusWindowTest, IsStartedOnceHoweverOftenItIsAskedForOnItsWay) {
    for (int count = 0; count < 60; ++count) {
        window->open();
    }
    nextRequest();
    EXPECT_EQ(starts(), 1U);
    order(encode(Event{Event::Kind::Shown, 1, 0, {}}));
    EXPECT_TRUE(runLoopUntil([&] {
        window->open();
        g_main_context_wakeup(nullptr);
        return starts() == 2;
    })) << "once it is on the screen, a new one comes to the front";
}

TEST_F(StatusWindowTest, FollowsWordsAndMenuAndIsSentOnlyWhatIsNew) {
    window->open();
    nextRequest();
    show("Break in 9 minutes");
    show("Break due for 2 minutes");
    EXPECT_EQ(wordsOf(nextRequest()), "Break due for 2 minutes");
    item("Mute").setState(NSMenuItem::StateValue::On);
    show("Break due for 2 minutes");
    EXPECT_EQ(valuesOf(nextRequest().content).at(2), ControlValue{true});
    menu->autoenablesItems = false;
    item("Quit").isEnabled = false;
    show("Break due for 2 minutes");
    show("Break due for 3 minutes");
    nextRequest();
    EXPECT_EQ(wordsOf(nextRequest()), "Break due for 3 minutes");
}

TEST_F(StatusWindowTest, PicksTheEntryThatWasPressed) {
    window->open();
    nextRequest();
    press(1);
    order(encode(Event{Event::Kind::Changed, 1, 2, ControlValue{true}}));
    press(3);
    ASSERT_TRUE(runLoopUntil([&] { return picked.size() == 3; }));
    EXPECT_THAT(picked, ElementsAre("Restart timer", "Mute", "Quit"));
    show("Break in 9 minutes");
    EXPECT_EQ(valuesOf(nextRequest().content).at(2), ControlValue{false}) << "the window shows a tick that is none";
}

TEST_F(StatusWindowTest, GoesWhenItIsHiddenOrClosed) {
    window->open();
    nextRequest();
    press(5);
    ASSERT_TRUE(runLoopUntil([&] { return !isRunning(); }));
    window->open();
    nextRequest();
    order(encode(Event{Event::Kind::Closed, 1, 0, {}}));
    ASSERT_TRUE(runLoopUntil([&] { return !isRunning(); }));
    EXPECT_THAT(picked, IsEmpty());
    EXPECT_THAT(errors, IsEmpty());
}

TEST_F(StatusWindowTest, IsKnownToHaveBeenShownThoughItIsAskedForAgainAtThatMoment) {
    bool isShown = false;
    window->open([&] { isShown = true; });
    nextRequest();
    say(Event::Kind::Shown);
    ASSERT_TRUE(runLoopUntil([&] {
        window->open();
        g_main_context_wakeup(nullptr);
        return starts() == 2;
    }));
    EXPECT_TRUE(isShown);
}

TEST_F(StatusWindowTest, OpensWhereItsUserIsThoughItIsOnItsWayElsewhere) {
    bool isFirstAnswered = false;
    window->open([&] { isFirstAnswered = true; });
    nextRequest();
    session.adopt({{"DISPLAY", ":elsewhere"}});
    openAndShow();
    EXPECT_EQ(starts(), 2U);
    EXPECT_TRUE(isFirstAnswered);
}

} // namespace
} // namespace platform::linux
