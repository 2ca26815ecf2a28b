// What a second costs in which nothing changes, since there are millions of them: no memory, and two short calls
// to the system.

#include "tests/faults/SystemCalls.hpp"
#include "tests/faults/WholeProgram.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace faults {
namespace {

class IdleTick : public testing::Test {
protected:
    using Counts = std::array<int, kinds>;

    /// The text says “>1h”, and nothing beside it changes for a quarter of an hour.
    void SetUp() override {
        program.store("[Settings]\nVersion='test'\nPopupAlerts=true\nShowCountdown=true\n");
        program.start({"-TimerInterval", "7000"});
        program.await([this] { return program.get("Text") == "(<'>1h'>,)"; }, "the timer on the bus");
        program.await([this] { return isAtRest(); }, "it to come to rest");
    }

    /// Whether it only ticks, since the panel has asked for everything.
    bool isAtRest() {
        const int waits = calls(Kind::Poll);
        runLoopFor(std::chrono::milliseconds{1900});
        return calls(Kind::Poll) <= waits + 2;
    }

    /// Each ends with a wait for the next one.
    void passTicks(int ticks) {
        const int waits = calls(Kind::Poll) + ticks;
        program.await([&] { return calls(Kind::Poll) >= waits; }, "ticks");
    }

    int calls(Kind kind) { return program.plan().calls[static_cast<std::size_t>(kind)]; }

    Counts counts() {
        Counts now{};
        std::copy(program.plan().calls.begin(), program.plan().calls.end(), now.begin());
        return now;
    }

    WholeProgram program;
};

TEST_F(IdleTick, AllocatesNothingAndLooksOnceAtTheSettings) {
    constexpr int ticks = 5;
    const Counts before = counts();
    passTicks(ticks);
    const Counts after = counts();
    Counts spent{};
    std::transform(after.begin(), after.end(), before.begin(), spent.begin(), std::minus{});
    Counts expected{};
    expected[static_cast<std::size_t>(Kind::Poll)] = ticks;
    expected[static_cast<std::size_t>(Kind::Status)] = ticks;
    EXPECT_EQ(spent, expected);
}

TEST_F(IdleTick, WaitsAndLooksAndAsksTheSystemNothingElse) {
    constexpr std::size_t perTick = 2; // the wait, a look at the settings
    constexpr std::size_t ticks = 3;
    std::vector<std::uint64_t> calls = nextSystemCalls(program.process(), (ticks + 1) * perTick);
    ASSERT_EQ(calls.size(), (ticks + 1) * perTick);
    calls.erase(calls.begin(), calls.begin() + perTick); // of a tick that was interrupted
    std::array<std::uint64_t, perTick> tick{};
    std::copy_n(calls.begin(), perTick, tick.begin());
    for (std::size_t number = 1; number < ticks; ++number) {
        EXPECT_TRUE(std::equal(tick.begin(), tick.end(), calls.data() + number * perTick))
            << testing::PrintToString(calls);
    }
}

} // namespace
} // namespace faults
