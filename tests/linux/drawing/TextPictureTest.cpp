#include "platform/linux/drawing/TextPicture.hpp"

#include "platform/linux/drawing/StrokeFont.hpp"
#include "tests/support/Pixels.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

TEST(TextPicture, IsASquareOfTheSizeAskedFor) {
    for (const int size : panelSizes) {
        const Picture picture = drawTextPicture(size, "9m", std::nullopt, 0.5);
        EXPECT_EQ(picture.width, size);
        EXPECT_EQ(picture.height, size);
    }
}

TEST(TextPicture, DiffersForEveryTextThatTheTimerShows) {
    for (const int size : panelSizes) {
        std::set<std::vector<std::uint32_t>> pictures;
        std::size_t texts = 0;
        for (const std::string prefix : {"", "+"}) {
            for (int number = 0; number <= 61; ++number) {
                for (const std::string unit : {"", "m"}) {
                    pictures.insert(
                        drawTextPicture(size, prefix + std::to_string(number) + unit, std::nullopt, 1).pixels);
                    ++texts;
                }
            }
            for (const char* const hours : {">1h", ">2h"}) {
                pictures.insert(drawTextPicture(size, prefix + hours, std::nullopt, 1).pixels);
                ++texts;
            }
        }
        EXPECT_EQ(pictures.size(), texts) << size;
    }
}

TEST(TextPicture, IsWhiteUnlessAColourIsGiven) {
    for (const int size : panelSizes) {
        const Picture plain = drawTextPicture(size, "9m", std::nullopt, std::nullopt);
        EXPECT_GT(std::count_if(plain.pixels.begin(), plain.pixels.end(), isWhite), size);
        EXPECT_EQ(std::count_if(plain.pixels.begin(), plain.pixels.end(), isRed), 0);
        const Picture due = drawTextPicture(size, "+9m", NSColor::red, 1);
        EXPECT_GT(std::count_if(due.pixels.begin(), due.pixels.end(), isRed), size);
        EXPECT_EQ(std::count_if(due.pixels.begin(), due.pixels.end(), isWhite), 0);
    }
}

TEST(TextPicture, HasABarAsLongAsTheTimeLeft) {
    const auto isFilled = [](const Picture& picture, int x) {
        const std::uint32_t pixel = picture.at(x, picture.height - 2);
        return part(pixel, 8) > 150 && part(pixel, 8) > part(pixel, 16) + 40; // teal
    };
    for (const double share : {0.0, 0.25, 0.5, 0.75, 1.0}) {
        const Picture picture = drawTextPicture(48, "9m", std::nullopt, share);
        int filled = 0;
        for (int x = 0; x < picture.width; ++x) {
            filled += isFilled(picture, x);
        }
        EXPECT_NEAR(filled, 48 * share, 3) << share;
    }
}

TEST(TextPicture, IsEquallyBoldWhateverTheDigits) {
    for (const int size : panelSizes) {
        const int room = (size > 24 ? size / 2 : size) - 2;
        const int height = room * 2 / 3;
        for (int minutes = 10; minutes <= 61; ++minutes) {
            const std::string text = std::to_string(minutes) + "m";
            EXPECT_EQ(StrokeText(text, room, height).thickness(), StrokeText("20m", room, height).thickness())
                << text << " in " << size << " pixels";
        }
    }
    EXPECT_GE(StrokeText("25m", 20, 14).thickness(), 2) << "in the usual panel it is bold";
}

TEST(TextPicture, LeavesOutWhatItCannotDraw) {
    EXPECT_EQ(drawTextPicture(22, "9 m?", std::nullopt, 1).pixels,
              drawTextPicture(22, "9m", std::nullopt, 1).pixels);
}

/// A square with a column of solid blue at its left and nothing beside it.
Picture blueColumn(int size) {
    Picture icon{size, size};
    for (int y = 0; y < size; ++y) {
        icon.at(0, y) = 0xFF0000FFU;
    }
    return icon;
}

TEST(WidePicture, IsAsHighAsTheIconAndTwiceAsWide) {
    for (const int size : panelSizes) {
        const Picture picture = drawTextBesideIcon(blueColumn(size), "9m", std::nullopt);
        EXPECT_EQ(picture.height, size);
        EXPECT_NEAR(picture.width, 2.08 * size, 2);
        EXPECT_EQ(picture.pixels.size(), static_cast<std::size_t>(picture.width * picture.height));
    }
}

TEST(WidePicture, HasTheIconAtItsLeftAndTheTextAtItsRight) {
    constexpr int margin = 2;
    const Picture picture = drawTextBesideIcon(blueColumn(24), "9m", NSColor::red);
    EXPECT_EQ(picture.at(margin, 12) & 0xFFFFFFU, 0x0000FFU);
    const auto redIn = [&](int from, int to) {
        int count = 0;
        for (int x = from; x < to; ++x) {
            for (int y = 0; y < picture.height; ++y) {
                count += isRed(picture.at(x, y));
            }
        }
        return count;
    };
    EXPECT_GT(redIn(24, picture.width), 24);
    EXPECT_EQ(redIn(0, 24), 0);
    EXPECT_EQ(redIn(picture.width - margin, picture.width), 0) << "the text keeps off the edge";
}

TEST(WidePicture, DiffersForEveryText) {
    std::set<std::vector<std::uint32_t>> pictures;
    for (int number = 0; number <= 61; ++number) {
        pictures.insert(drawTextBesideIcon(blueColumn(22), std::to_string(number) + "m", std::nullopt).pixels);
    }
    EXPECT_EQ(pictures.size(), 62U);
}

TEST(ColouredIcon, IsAsTransparentAsBeforeAndMostlyInThatColour) {
    Picture icon{2, 1};
    icon.pixels = {0xFF808080U, 0x00808080U};
    const Picture red = inColour(icon, NSColor::red);
    EXPECT_EQ(part(red.pixels[0], 24), 255U);
    EXPECT_GT(part(red.pixels[0], 16), 220U);
    EXPECT_LT(part(red.pixels[0], 0), 80U);
    EXPECT_EQ(part(red.pixels[1], 24), 0U);
}

} // namespace
} // namespace platform::linux
