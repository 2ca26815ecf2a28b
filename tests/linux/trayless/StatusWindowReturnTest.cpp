// The small window comes back when its program dies, and not where nobody misses it.

#include "tests/linux/trayless/StatusWindowTest.hpp"
#include "tests/support/ShortSeconds.hpp"

#include <gmock/gmock.h>

#include <chrono>
#include <filesystem>

namespace platform::linux {
namespace {

using testing::ElementsAre;
namespace fs = std::filesystem;

TEST_F(StatusWindowTest, ComesBackWhenItsProgramHasDied) {
    const ShortSeconds seconds{std::chrono::milliseconds{100}};
    openAndShow();
    order("end");
    EXPECT_TRUE(nextRequest().comesUnasked);
    EXPECT_EQ(starts(), 2U);
    show("Break in 8 minutes");
    EXPECT_EQ(wordsOf(nextRequest()), "Break in 8 minutes");
}

TEST_F(StatusWindowTest, DoesNotComeLaterIfItCouldNotBeShownWhenItWasAskedFor) {
    const ShortSeconds seconds{std::chrono::milliseconds{10}};
    bool isShown = false;
    window->open([&] { isShown = true; });
    order("end");
    ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    runLoopFor(std::chrono::milliseconds{200});
    EXPECT_EQ(starts(), 1U);
    EXPECT_FALSE(isShown);
}

TEST_F(StatusWindowTest, ComesBackIfItStoodInForTheIconBeforeItWasAskedForInVain) {
    const ShortSeconds seconds{std::chrono::milliseconds{100}};
    window->appear();
    nextRequest();
    window->open();
    nextRequest();
    order("end");
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, DoesNotComeBackWhileTheSessionIsOver) {
    openAndShow();
    for (int reminder = 0; reminder < 3; ++reminder) {
        session.reminderWasMissed();
    }
    {
        const ShortSeconds seconds{std::chrono::milliseconds{1}};
        order("end");
        ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
        runLoopFor(std::chrono::milliseconds{300});
    }
    EXPECT_EQ(starts(), 1U);
    session.displayWasFound(session.display());
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, ComesBackWhenItsProgramCanBeStartedAgain) {
    const ShortSeconds seconds{std::chrono::milliseconds{50}};
    fs::rename(folder.path / "program", folder.path / "away");
    window->appear();
    runLoopFor(std::chrono::milliseconds{50});
    fs::rename(folder.path / "away", folder.path / "program");
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, ComesBackMoreAndMoreSlowlyIfItsProgramAlwaysDies) {
    const ShortSeconds seconds{std::chrono::milliseconds{1}};
    fs::permissions(folder.write("program", "#!/bin/sh\necho $$ >>\"${0%/*}/processes\"\n"), fs::perms::owner_all);
    window->appear();
    EXPECT_TRUE(runLoopUntil([&] {
        g_main_context_wakeup(nullptr);
        return starts() >= 3;
    }));
    runLoopFor(std::chrono::milliseconds{250});
    EXPECT_LE(starts(), 9U) << "the pauses add up to 255 ms before the ninth start";
}

TEST_F(StatusWindowTest, StaysAwayOnceItsUserHasClosedIt) {
    window->open();
    nextRequest();
    const ShortSeconds seconds{std::chrono::milliseconds{1}};
    order(encode(Event{Event::Kind::Closed, 1, 0, {}}));
    ASSERT_TRUE(runLoopUntil([&] { return !isRunning(); }));
    runLoopFor(std::chrono::milliseconds{50});
    EXPECT_EQ(starts(), 1U);
}

TEST_F(StatusWindowTest, CanAppearAgainAfterItsProgramDied) {
    window->appear();
    nextRequest();
    order("end");
    ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    EXPECT_THAT(errors, ElementsAre("the window program ended before its window was closed"));
    runLoopUntil([] { return !g_main_context_pending(nullptr); });
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, CanAppearAgainAfterItsProgramShowedNothing) {
    {
        const ShortSeconds seconds{std::chrono::milliseconds{10}};
        window->appear();
        ASSERT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    }
    EXPECT_THAT(errors, ElementsAre("the window program has shown no window for half a minute"));
    runLoopUntil([] { return !g_main_context_pending(nullptr); });
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

TEST_F(StatusWindowTest, CanAppearAfterItsProgramCouldNotBeStarted) {
    const fs::path program = folder.path / "program";
    fs::rename(program, folder.path / "away");
    window->appear();
    EXPECT_EQ(errors.size(), 1U);
    fs::rename(folder.path / "away", program);
    window->appear();
    EXPECT_TRUE(nextRequest().comesUnasked);
}

} // namespace
} // namespace platform::linux
