#include "platform/linux/glib/DelayedCall.hpp"

#include "tests/support/PrivateBuses.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

TEST(DelayedCallTest, IsMadeOnceAfterItsDelay) {
    int calls = 0;
    DelayedCall call;
    const auto start = std::chrono::steady_clock::now();
    call.start(20ms, [&] { ++calls; });
    EXPECT_TRUE(call.isPending());
    EXPECT_TRUE(runLoopUntil([&] { return calls == 1; }));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 20ms);
    EXPECT_FALSE(call.isPending());
    runLoopFor(50ms);
    EXPECT_EQ(calls, 1);
}

TEST(DelayedCallTest, IsMadeInTheNextTurnIfThatIsWanted) {
    bool isCalled = false;
    DelayedCall call;
    call.startSoon([&] { isCalled = true; });
    EXPECT_FALSE(isCalled);
    g_main_context_iteration(nullptr, FALSE);
    EXPECT_TRUE(isCalled);
}

TEST(DelayedCallTest, IsNotMadeOnceCancelledOrReplaced) {
    std::string calls;
    DelayedCall cancelled;
    DelayedCall replaced;
    cancelled.start(1ms, [&] { calls += "cancelled "; });
    cancelled.cancel();
    replaced.startSoon([&] { calls += "replaced "; });
    replaced.start(20ms, [&] { calls += "instead "; });
    EXPECT_TRUE(runLoopUntil([&] { return !calls.empty(); }));
    EXPECT_EQ(calls, "instead ");
}

TEST(DelayedCallTest, IsNotMadeOnceItsOwnerIsGone) {
    bool isCalled = false;
    const auto held = std::make_shared<int>();
    {
        DelayedCall call;
        call.start(1ms, [&, held] { isCalled = true; });
        EXPECT_EQ(held.use_count(), 2);
    }
    EXPECT_EQ(held.use_count(), 1) << "what the function holds is kept";
    runLoopFor(20ms);
    EXPECT_FALSE(isCalled);
}

TEST(DelayedCallTest, MayBeStartedAnewByItsOwnFunction) {
    int calls = 0;
    DelayedCall call;
    const std::function<void()> again = [&] {
        if (++calls < 3) {
            call.startSoon(again);
        }
    };
    call.start(1ms, again);
    EXPECT_TRUE(runLoopUntil([&] { return calls == 3; }));
    EXPECT_FALSE(call.isPending());
}

TEST(DelayedCallTest, MayBeDestroyedByItsOwnFunction) {
    std::optional<DelayedCall> call{std::in_place};
    const auto held = std::make_shared<int>(7);
    int seen = 0;
    call->start(1ms, [&, held] {
        call.reset();
        seen = *held; // what the function holds outlives the object
    });
    EXPECT_TRUE(runLoopUntil([&] { return seen == 7; }));
}

} // namespace
} // namespace platform::linux
