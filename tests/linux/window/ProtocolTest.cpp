// What the window program tells arrives as it was sent, and nothing else arrives.

#include "platform/linux/window/Protocol.hpp"

#include <glib.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>

namespace platform::linux {
namespace {

using namespace std::string_literals;

TEST(EventOnTheWire, KeepsEverything) {
    for (const Event& event :
         {Event{Event::Kind::Changed, 1, 2, std::int64_t{-5}}, Event{Event::Kind::Changed, 1, 0, true},
          Event{Event::Kind::Pressed, 4'000'000'000, 3, std::nullopt},
          Event{Event::Kind::Submitted, 1, 0, std::nullopt}, Event{Event::Kind::Closed, 1, 0, std::nullopt},
          Event{Event::Kind::Shown, 1, 0, std::nullopt}, Event{Event::Kind::NoDisplay, 0, 0, std::nullopt}}) {
        EXPECT_EQ(decodeEvent(encode(event)), event);
    }
}

TEST(MalformedEvent, IsRefused) {
    for (const std::string& message :
         {""s, "garbage"s, "('pressed', 1"s, "('pressed', 1, 1)"s, "('eaten', 1, 1, nothing)"s,
          "('pressed', -1, 1, nothing)"s, "('pressed', 1, 1, just <true>)"s, "('changed', 1, 1, nothing)"s,
          "('changed', 1, 1, just <'text'>)"s, "('closed', 1, 0, nothing) and more"s,
          "('closed', 1, 0, just <'text'>)"s, "\0\xFF\xFE"s, std::string(60'000, '('),
          "('changed', 1, 1, just " + std::string(5'000, '<') + ")"}) {
        EXPECT_EQ(decodeEvent(message), std::nullopt) << message.substr(0, 100);
    }
}

TEST(MalformedEvent, IsNotGivenToGlibIfItIsNoText) {
    static int complaints = 0;
    const GLogFunc before = g_log_set_default_handler(
        [](const char*, GLogLevelFlags, const char*, gpointer) { ++complaints; }, nullptr);
    EXPECT_EQ(decodeEvent("('pre\xFFssed', 1, 1, nothing)"), std::nullopt);
    g_log_set_default_handler(before, nullptr);
    EXPECT_EQ(complaints, 0);
}

TEST(LongestEvent, FitsIntoAPacket) {
    constexpr auto largest = std::numeric_limits<std::uint32_t>::max();
    const Event longest{Event::Kind::Submitted, largest, largest, std::numeric_limits<std::int64_t>::min()};
    EXPECT_LE(encode(longest).size(), longestEvent / 2);
}

} // namespace
} // namespace platform::linux
