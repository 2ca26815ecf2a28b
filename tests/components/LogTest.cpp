#include "app/Log.hpp"

#include "app/Err.hpp"
#include "tests/components/Bench.hpp"

namespace {

using namespace marvelode;
using bench::Bench;
using bench::Lines;
using platform::simulated::LogEntry;

class TheLog : public Bench {
protected:
    static LogEntry entry(const std::string& message) { return {"Marvelode Timer", "MarvelodeLog", message}; }
};

TEST_F(TheLog, WritesUnderOneSubsystemAndCategory) {
    Log::error("first");
    Log::error("second");
    EXPECT_EQ(desktop.logged(), (std::vector{entry("first"), entry("second")}));
    EXPECT_EQ(desktop.printed(), (Lines{"first", "second"}));
    EXPECT_EQ(Log::logger().subsystem, "Marvelode Timer");
    EXPECT_EQ(Log::logger().category, "MarvelodeLog");
    EXPECT_EQ(&Log::logger(), &Log::logger());
}

TEST_F(TheLog, TakesMessagesToTheLetter) {
    const std::string message = "100 %s %n {} {0} %{public}s";
    Log::error(message);
    EXPECT_EQ(desktop.logged(), std::vector{entry(message)});
    EXPECT_EQ(desktop.printed(), Lines{message});
}

TEST_F(TheLog, TakesAnEmptyMessage) {
    Log::error("");
    EXPECT_EQ(desktop.logged(), std::vector{entry("")});
    EXPECT_EQ(desktop.printed(), Lines{""});
}

TEST_F(TheLog, PrintsWhatTheDesktopDoesNotWantLogged) {
    desktop.logsErrors = false;
    Log::error("message");
    EXPECT_EQ(desktop.logged(), std::vector<LogEntry>{});
    EXPECT_EQ(desktop.printed(), Lines{"message"});
}

TEST(AnError, ReadsAsItsMessageAlone) {
    const Err error{"Invalid URL to audio file"};
    EXPECT_EQ(error.msg, "Invalid URL to audio file");
    EXPECT_EQ(error.description(), "Invalid URL to audio file");
    EXPECT_STREQ(error.what(), "Invalid URL to audio file");
}

} // namespace
