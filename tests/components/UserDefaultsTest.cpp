#include "platform/UserDefaults.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using namespace platform;
using namespace std::string_literals;
using Domain = std::map<std::string, std::string, std::less<>>;
using Limits = std::numeric_limits<std::int64_t>;

TEST(ATextAsABoolean, IsTrueIfItBeginsLikeATruth) {
    for (const std::string& text : {"YES"s, "yes"s, "Y"s, "true"s, "TRUE"s, "tomorrow"s, "1"s, "42"s, "-1"s, "+7"s,
                                    "007"s, " 1"s, "9 lives"s}) {
        EXPECT_TRUE(boolFromDefaults(text)) << text;
    }
    for (const std::string& text :
         {""s, "NO"s, "no"s, "false"s, "0"s, "000"s, "-0"s, "0.5"s, "on"s, "Sonar"s, "-"s, "  "s}) {
        EXPECT_FALSE(boolFromDefaults(text)) << text;
    }
}

TEST(ATextAsAnInteger, CountsUpToTheFirstOtherCharacter) {
    EXPECT_EQ(integerFromDefaults("1500"s), 1500);
    EXPECT_EQ(integerFromDefaults("  12abc"s), 12);
    EXPECT_EQ(integerFromDefaults("90.7"s), 90);
    EXPECT_EQ(integerFromDefaults("-4x"s), -4);
    EXPECT_EQ(integerFromDefaults("+4"s), 4);
    EXPECT_EQ(integerFromDefaults("+-4"s), 0);
    EXPECT_EQ(integerFromDefaults("abc"s), 0);
    EXPECT_EQ(integerFromDefaults(""s), 0);
    EXPECT_EQ(integerFromDefaults("99999999999999999999"s), Limits::max());
    EXPECT_EQ(integerFromDefaults("-99999999999999999999"s), Limits::min());
}

TEST(ANumberAsAnInteger, IsCutOffAndClamped) {
    EXPECT_EQ(integerFromDefaults(90.7), 90);
    EXPECT_EQ(integerFromDefaults(-90.7), -90);
    EXPECT_EQ(integerFromDefaults(0.999), 0);
    EXPECT_EQ(integerFromDefaults(1e300), Limits::max());
    EXPECT_EQ(integerFromDefaults(-1e300), Limits::min());
    EXPECT_EQ(integerFromDefaults(std::nan("")), 0);
    EXPECT_EQ(integerFromDefaults(std::int64_t{-7}), -7);
    EXPECT_EQ(integerFromDefaults(true), 1);
    EXPECT_EQ(integerFromDefaults(false), 0);
}

TEST(ANumberAsABoolean, IsTrueUnlessZero) {
    EXPECT_TRUE(boolFromDefaults(0.5));
    EXPECT_TRUE(boolFromDefaults(std::int64_t{-1}));
    EXPECT_FALSE(boolFromDefaults(0.0));
    EXPECT_FALSE(boolFromDefaults(std::int64_t{0}));
}

TEST(AValueAsText, IsPlainDecimal) {
    EXPECT_EQ(stringFromDefaults(1500.0), "1500");
    EXPECT_EQ(stringFromDefaults(90.75), "90.75");
    EXPECT_EQ(stringFromDefaults(std::int64_t{-7}), "-7");
    EXPECT_EQ(stringFromDefaults(true), "1");
    EXPECT_EQ(stringFromDefaults(false), "0");
    EXPECT_EQ(stringFromDefaults("as it is"s), "as it is");
}

TEST(TheCommandLine, IsReadInPairs) {
    EXPECT_EQ(argumentDomain({"-TimerInterval", "1500", "-Mute", "YES"}),
              (Domain{{"TimerInterval", "1500"}, {"Mute", "YES"}}));
    EXPECT_EQ(argumentDomain({"-TimerInterval", "-60"}), (Domain{{"TimerInterval", "-60"}}));
    EXPECT_EQ(argumentDomain({"-AlertSound", ""}), (Domain{{"AlertSound", ""}}));
}

TEST(TheCommandLine, LetsTheLaterOfTwoPairsWin) {
    EXPECT_EQ(argumentDomain({"-Mute", "YES", "-Mute", "NO"}), (Domain{{"Mute", "NO"}}));
}

TEST(TheCommandLine, PassesOverWhatIsNoPair) {
    EXPECT_EQ(argumentDomain({}), Domain{});
    EXPECT_EQ(argumentDomain({"-test"}), Domain{});
    EXPECT_EQ(argumentDomain({"-test", "-Mute", "YES"}), (Domain{{"Mute", "YES"}}));
    EXPECT_EQ(argumentDomain({"file", "-Mute", "YES", "more"}), (Domain{{"Mute", "YES"}}));
    EXPECT_EQ(argumentDomain({"--Mute", "YES", "-", "-1", "x"}), Domain{});
}

} // namespace
