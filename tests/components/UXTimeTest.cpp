#include "statusbar/UXTime.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <csignal>
#include <limits>

namespace {

using marvelode::UXTime;

struct Sample {
    double seconds;
    const char* countdown;
    const char* countup;
};

class Samples : public testing::TestWithParam<Sample> {};

TEST_P(Samples, ReadAsTheyShould) {
    EXPECT_EQ(UXTime::countdown(GetParam().seconds), GetParam().countdown);
    EXPECT_EQ(UXTime::countup(GetParam().seconds), GetParam().countup);
}

INSTANTIATE_TEST_SUITE_P(Countdown, Samples,
                         testing::Values(Sample{0, "0", "+0"}, Sample{9.5, "9", "+9"}, Sample{10, "", "+10"},
                                         Sample{10.5, "1m", "+10"}, Sample{59, "1m", "+59"}, Sample{60, "2m", "+"},
                                         Sample{61, "2m", "+1m"}, Sample{600, "11m", "+10m"},
                                         Sample{3599, "60m", "+59m"}, Sample{3600, "61m", "+60m"},
                                         Sample{3601, ">1h", "+>1h"}, Sample{7322, ">2h", "+>2h"},
                                         Sample{-5, "-5", "+-5"}, Sample{-0.5, "0", "+0"}),
                         [](const auto& sample) { return "Sample" + std::to_string(sample.index); });

TEST(Countdown, IsEmptyAtExactlyTenSecondsOnly) {
    EXPECT_EQ(UXTime::countdown(10), "");
    EXPECT_EQ(UXTime::countdown(9.999), "9");
    EXPECT_EQ(UXTime::countdown(10.001), "1m");
}

TEST(Countdown, CountsTheMinuteThatHasBegun) {
    EXPECT_EQ(UXTime::countdown(59.999), "1m");
    EXPECT_EQ(UXTime::countdown(119), "2m");
    EXPECT_EQ(UXTime::countdown(120), "3m");
}

TEST(Countup, IsABareSignAtExactlyAMinute) {
    EXPECT_EQ(UXTime::countup(60), "+");
    EXPECT_EQ(UXTime::countup(59.999), "+59");
    EXPECT_EQ(UXTime::countup(60.001), "+1m");
}

TEST(BothTexts, ChangeToHoursJustAboveAnHour) {
    EXPECT_EQ(UXTime::countdown(3600), "61m");
    EXPECT_EQ(UXTime::countup(3600), "+60m");
    EXPECT_EQ(UXTime::countdown(3600.5), ">1h");
    EXPECT_EQ(UXTime::countup(3600.5), "+>1h");
}

TEST(BothTexts, StayInHoursForLargeValues) {
    EXPECT_EQ(UXTime::countdown(86400), ">24h");
    EXPECT_EQ(UXTime::countup(86400), "+>24h");
    EXPECT_EQ(UXTime::countdown(3.6e9), ">1000000h");
}

TEST(BothTexts, WriteNegativeSpansAsSeconds) {
    EXPECT_EQ(UXTime::countdown(-3601.9), "-3601");
    EXPECT_EQ(UXTime::countup(-3601.9), "+-3601");
}

TEST(BothTexts, GoUpToTheLargestNumbers) {
    EXPECT_EQ(UXTime::countdown(9223372036854774784.0), ">2562047788015215h");
    EXPECT_EQ(UXTime::countup(-9223372036854774784.0), "+-9223372036854774784");
    EXPECT_EQ(UXTime::countup(-9223372036854775808.0), "+-9223372036854775808");
}

class UXTimeDeathTest : public testing::TestWithParam<double> {
protected:
    void SetUp() override { testing::FLAGS_gtest_death_test_style = "threadsafe"; }
};

TEST_P(UXTimeDeathTest, WhatIsNoNumberOrTooLargeIsFatal) {
    EXPECT_EXIT(UXTime::countdown(GetParam()), testing::KilledBySignal(SIGABRT), "");
    EXPECT_EXIT(UXTime::countup(GetParam()), testing::KilledBySignal(SIGABRT), "");
}

INSTANTIATE_TEST_SUITE_P(Impossible, UXTimeDeathTest,
                         testing::Values(std::nan(""), std::numeric_limits<double>::infinity(),
                                         -std::numeric_limits<double>::infinity(), 9223372036854775808.0,
                                         -9223372036854777856.0),
                         [](const auto& value) { return "Value" + std::to_string(value.index); });

} // namespace
