// Each control of a window gets a letter of its own, as long as there are letters.

#include "platform/linux/window/helper/Mnemonics.hpp"

#include <gtest/gtest.h>

#include <string>

namespace platform::linux {
namespace {

TEST(Mnemonics, PreferBeginningsOfWords) {
    Mnemonics mnemonics;
    EXPECT_EQ(mnemonics.mark("Restart after sleep"), "_Restart after sleep");
    EXPECT_EQ(mnemonics.mark("Reminder sound"), "Reminder _sound");
}

TEST(Mnemonics, FallBackToAnyLetterOfEitherCase) {
    Mnemonics mnemonics;
    EXPECT_EQ(mnemonics.mark("OK"), "_OK");
    EXPECT_EQ(mnemonics.mark("ok"), "o_k");
}

TEST(Mnemonics, AreTheFirstAndTheLastLettersToo) {
    for (const std::string letter : {"a", "z", "A", "Z"}) {
        EXPECT_EQ(Mnemonics{}.mark(letter), "_" + letter);
    }
    for (const std::string neighbour : {"`", "{", "@", "["}) {
        EXPECT_EQ(Mnemonics{}.mark(neighbour), neighbour);
    }
}

TEST(Mnemonics, RunOutQuietly) {
    Mnemonics mnemonics;
    mnemonics.mark("OK");
    mnemonics.mark("OK");
    EXPECT_EQ(mnemonics.mark("OK"), "OK");
    EXPECT_EQ(mnemonics.mark("600 §"), "600 §");
    EXPECT_EQ(mnemonics.mark(""), "");
}

TEST(Mnemonics, KeepUnderscoresOfTheTitle) {
    Mnemonics mnemonics;
    EXPECT_EQ(mnemonics.mark("a_b"), "_a__b");
}

} // namespace
} // namespace platform::linux
