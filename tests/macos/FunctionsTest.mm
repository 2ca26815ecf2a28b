// What the program asks of functions, which nobody can listen in on where they are real: the alert beep, the
// unified log and standard output.

#include "app/Log.hpp"
#import "tests/macos/WholeProgram.hpp"
#import "tests/macos/shims/Heard.hpp"

#include <thread>

namespace {

using namespace macos_tests;

using Functions = WholeProgram;

TEST_F(Functions, BeepForTheSystemsSound) {
    store(@"Version", @"1");
    store(@"PopupAlerts", @(0));
    run({"-TimerInterval", "1"}, {{[] { return beeps() > 0; }, [] {}}});
    EXPECT_EQ(beeps(), 1);
    EXPECT_TRUE(playedSounds().empty());
}

TEST_F(Functions, PrintAndLogErrors) {
    testing::internal::CaptureStdout();
    session.run({}, 5s, [](int, const char* const*) {
        marvelode::Log::error("50% {done}");
        marvelode::Log::error("");
        return 0;
    });
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "50% {done}\n\n");
    EXPECT_EQ(createdLogs(), 1);
    ASSERT_EQ(logEntries().size(), 2U);
    EXPECT_EQ(logEntries().front().subsystem, "Marvelode Timer");
    EXPECT_EQ(logEntries().front().category, "MarvelodeLog");
    EXPECT_EQ(logEntries().front().type, OS_LOG_TYPE_ERROR);
    EXPECT_EQ(logEntries().front().format, "%{public}s");
    EXPECT_EQ(logEntries().front().argument, "50% {done}");
    EXPECT_EQ(logEntries().back().format, "%{public}s");
    EXPECT_EQ(logEntries().back().argument, "");
}

TEST_F(Functions, ManyThreadsShareOneLog) {
    testing::internal::CaptureStdout();
    session.run({}, 5s, [](int, const char* const*) {
        std::vector<std::thread> threads;
        for (int count = 0; count < 8; ++count) {
            threads.emplace_back([] { marvelode::Log::error("from a thread"); });
        }
        for (std::thread& each : threads) {
            each.join();
        }
        return 0;
    });
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(createdLogs(), 1);
    EXPECT_EQ(logEntries().size(), 8U);
}

} // namespace
