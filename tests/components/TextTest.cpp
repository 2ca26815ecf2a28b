#include "platform/Text.hpp"

#include <gtest/gtest.h>

namespace {

using namespace platform;
using namespace std::string_literals;
using Lines = std::vector<std::string_view>;

TEST(Utf8, IsToldFromOtherBytes) {
    for (const std::string& text :
         {""s, "plain"s, "Größe"s, "\u20AC"s, "\U0001F9D8"s, "\0"s, "\xED\x9F\xBF"s, "\xEE\x80\x80"s,
          "\xF4\x8F\xBF\xBF"s, "\xC2\x80"s, "\xE0\xA0\x80"s, "\xF0\x90\x80\x80"s}) {
        EXPECT_TRUE(isUtf8(text)) << testing::PrintToString(text);
    }
    for (const std::string& bytes :
         {"\x80"s, "\xFF"s, "\xC0\x80"s, "\xC1\xBF"s, "\xC3"s, "a\xC3"s, "\xC3("s, "\xC3\x7F"s, "\xC3\xC0"s,
          "\xE2\x82\x7F"s, "\xF0\x9F\xA7\x7F"s, "\xE2\x82"s, "\xE0\x9F\xBF"s, "\xED\xA0\x80"s, "\xF0\x8F\xBF\xBF"s,
          "\xF4\x90\x80\x80"s, "\xF5\x80\x80\x80"s, "\xF0\x9F\xA7"s}) {
        EXPECT_FALSE(isUtf8(bytes)) << testing::PrintToString(bytes);
    }
}

TEST(Lines, EndAtEveryKindOfNewline) {
    EXPECT_EQ(nonEmptyLines("a\nb\rc\r\nd\ve\ff\u0085g\u2028h\u2029i"),
              (Lines{"a", "b", "c", "d", "e", "f", "g", "h", "i"}));
}

TEST(Lines, AreLeftOutWhenEmpty) {
    EXPECT_EQ(nonEmptyLines(""), Lines{});
    EXPECT_EQ(nonEmptyLines("\n\r\n\u2029"), Lines{});
    EXPECT_EQ(nonEmptyLines("\n\na\n\n b\n"), (Lines{"a", " b"}));
}

TEST(Lines, AreNotCutInsideOtherCharacters) {
    // NOLINTNEXTLINE(misc-misleading-bidirectional): the character next to those that separate lines is one
    EXPECT_EQ(nonEmptyLines("\u2027\u202A\u00C5\u0084"), (Lines{"\u2027\u202A\u00C5\u0084"}));
}

TEST(Whitespace, IsTrimmedAtBothEndsOnly) {
    EXPECT_EQ(trimmingWhitespace(" \ta b\u00A0c \u3000\u2003"), "a b\u00A0c");
    EXPECT_EQ(trimmingWhitespace(" \t "), "");
    EXPECT_EQ(trimmingWhitespace(""), "");
    EXPECT_EQ(trimmingWhitespace("\na\n"), "\na\n");     // newlines are not spaces
    EXPECT_EQ(trimmingWhitespace("\u200Ba"), "\u200Ba"); // nor is what has no width
}

} // namespace
