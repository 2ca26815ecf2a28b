#include "platform/linux/tray/StatusContent.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

TEST(Words, SayWhatTheTextMeans) {
    const std::vector<std::pair<double, const char*>> table{
        {7322, "Break in more than 2 hours"},
        {3601, "Break in more than 1 hour"},
        {3600, "Break in 61 minutes"},
        {600, "Break in 11 minutes"},
        {60, "Break in 2 minutes"},
        {59.9, "Break in 1 minute"},
        {10.1, "Break in 1 minute"},
        {10, "Break in 10 seconds"}, // where the text is empty
        {9.9, "Break in 9 seconds"},
        {1, "Break in 1 second"},
        {0.9, "Break now"},
        {0, "Break now"},
        {-0.9, "Break now"},
        {-1, "Break due for 1 second"},
        {-59.9, "Break due for 59 seconds"},
        {-60, "Break due for 1 minute"}, // where the text is a lone plus sign
        {-119.9, "Break due for 1 minute"},
        {-120, "Break due for 2 minutes"},
        {-3600, "Break due for 60 minutes"},
        {-3601, "Break due for more than 1 hour"},
        {-86400, "Break due for more than 24 hours"},
    };
    std::string text = "what was there before";
    for (const auto& [secondsLeft, words] : table) {
        putInWords(text, secondsLeft);
        EXPECT_EQ(text, words) << secondsLeft;
    }
}

} // namespace
} // namespace platform::linux
