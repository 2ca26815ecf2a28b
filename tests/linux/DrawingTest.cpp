// The pictures that panels are sent: read from the program's files, or drawn.

#include "platform/linux/Resources.hpp"
#include "platform/linux/drawing/Png.hpp"
#include "platform/linux/drawing/StrokeFont.hpp"
#include "platform/linux/drawing/TextPicture.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/tray/StatusContent.hpp"
#include "platform/linux/tray/TrayHost.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

const std::vector<int> sizes{16, 22, 24, 32, 44, 48};

std::uint32_t part(std::uint32_t pixel, unsigned shift) { return pixel >> shift & 0xFFU; }

bool isRed(std::uint32_t pixel) {
    return part(pixel, 24) > 200 && part(pixel, 16) > 200 && part(pixel, 8) < 60 && part(pixel, 0) < 60;
}

bool isWhite(std::uint32_t pixel) {
    return part(pixel, 24) > 200 && part(pixel, 16) > 200 && part(pixel, 8) > 200 && part(pixel, 0) > 200;
}

std::string bigEndian(std::uint32_t number) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

std::string chunk(const std::string& name, const std::string& content) {
    return bigEndian(static_cast<std::uint32_t>(content.size())) + name + content + "sum.";
}

std::string compressed(const std::string& bytes) {
    const ObjectHandle<GZlibCompressor> compressor{g_zlib_compressor_new(G_ZLIB_COMPRESSOR_FORMAT_ZLIB, 9)};
    std::string result(bytes.size() + 100, '\0');
    std::size_t taken = 0;
    std::size_t given = 0;
    g_converter_convert(G_CONVERTER(compressor.get()), bytes.data(), bytes.size(), result.data(), result.size(),
                        G_CONVERTER_INPUT_AT_END, &taken, &given, nullptr);
    return result.substr(0, given);
}

/// A square PNG, each byte of it reduced by what the filter of that number predicts from its neighbours.
std::string encoded(const std::vector<std::uint32_t>& pixels, int side, int filter) {
    const auto byte = [&](int row, int index) {
        if (row < 0 || index < 0) {
            return 0;
        }
        const std::uint32_t pixel = pixels[static_cast<std::size_t>(row * side + index / 4)];
        const unsigned shift = std::array{16U, 8U, 0U, 24U}[static_cast<std::size_t>(index % 4)];
        return static_cast<int>(part(pixel, shift));
    };
    std::string rows;
    for (int row = 0; row < side; ++row) {
        rows += static_cast<char>(filter);
        for (int index = 0; index < 4 * side; ++index) {
            const int left = byte(row, index - 4);
            const int above = byte(row - 1, index);
            const int corner = index < 4 ? 0 : byte(row - 1, index - 4);
            const auto isNearer = [&](int one, int other) {
                return std::abs(left + above - corner - one) <= std::abs(left + above - corner - other);
            };
            const int paeth = isNearer(left, above) && isNearer(left, corner) ? left
                              : isNearer(above, corner)                       ? above
                                                                              : corner;
            const std::array predictions{0, left, above, (left + above) / 2, paeth, 0};
            rows += static_cast<char>(byte(row, index) - predictions[static_cast<std::size_t>(filter)]);
        }
    }
    const std::string size = bigEndian(static_cast<std::uint32_t>(side));
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", size + size + std::string{"\x08\x06\0\0\0", 5}) +
           chunk("IDAT", compressed(rows)) + chunk("IEND", "");
}

TEST(Png, GivesThePicturesOfTheProgram) {
    for (const char* const name : {"Marvelode", "MarvelodeGrey"}) {
        for (const int size : sizes) {
            const fs::path file =
                fs::path{RESOURCES} / "status" / (std::string{name} + "-" + std::to_string(size) + ".png");
            const auto picture = decodePng(contentsOfFile(file).value());
            ASSERT_TRUE(picture) << file;
            EXPECT_EQ(picture->width, size);
            EXPECT_EQ(picture->height, size);
            EXPECT_EQ(part(picture->at(0, 0), 24), 0U) << "the corners are empty";
            const auto solid = std::count_if(picture->pixels.begin(), picture->pixels.end(),
                                             [](std::uint32_t pixel) { return part(pixel, 24) == 255; });
            EXPECT_GT(solid, size * size / 5) << "and the window is not";
        }
    }
}

TEST(Png, UndoesEveryFilter) {
    constexpr int side = 3;
    const std::vector<std::uint32_t> drawn{0xFFFF0000, 0x8000FF00, 0x00000000, 0xFF102030, 0x7F405060,
                                           0x01FFFFFF, 0xFFFEDCBA, 0xC0010203, 0xFF808080};
    for (int filter = 0; filter <= 4; ++filter) {
        const auto picture = decodePng(encoded(drawn, side, filter));
        ASSERT_TRUE(picture) << filter;
        EXPECT_EQ(picture->pixels, drawn) << filter;
    }
    EXPECT_FALSE(decodePng(encoded(drawn, side, 5)));
}

TEST(Png, GivesNothingForDamagedFiles) {
    const std::string whole = contentsOfFile(fs::path{RESOURCES} / "status/Marvelode-22.png").value();
    for (std::size_t length = 0; length + 12 < whole.size(); ++length) {
        EXPECT_FALSE(decodePng(whole.substr(0, length)).has_value()) << length;
    }
    std::string other = whole;
    other[25] = 2; // without transparency
    EXPECT_TRUE(pngSize(other));
    EXPECT_FALSE(decodePng(other));
}

TEST(Png, SurvivesAnyByteBeingWrong) {
    const std::string whole = contentsOfFile(fs::path{RESOURCES} / "status/Marvelode-16.png").value();
    for (std::size_t position = 0; position < whole.size(); ++position) {
        for (const char wrong : {'\0', '\x7F', '\xFF'}) {
            std::string damaged = whole;
            damaged[position] = wrong;
            if (const auto picture = decodePng(damaged)) {
                EXPECT_EQ(picture->pixels.size(),
                          static_cast<std::size_t>(picture->width) * static_cast<std::size_t>(picture->height));
            }
        }
    }
}

TEST(TextPicture, IsASquareOfTheSizeAskedFor) {
    for (const int size : sizes) {
        const Picture picture = drawTextPicture(size, "9m", std::nullopt, 0.5);
        EXPECT_EQ(picture.width, size);
        EXPECT_EQ(picture.height, size);
    }
}

TEST(TextPicture, DiffersForEveryTextThatTheTimerShows) {
    for (const int size : sizes) {
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
    for (const int size : sizes) {
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
    for (const int size : sizes) {
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

TEST(TrayHost, ShowsInThePictureTheColourThatALabelCannotHave) {
    const Resources resources{fs::path{RESOURCES}};
    const TrayHost& gnome = TrayHost::ofProcess("gnome-shell");
    StatusContent early{};
    early.image = "MarvelodeGrey.png";
    early.text = "+9";
    StatusContent due = early;
    due.colour = NSColor::red;
    EXPECT_TRUE(gnome.needsNewPicture(early, due));
    const auto reddish = [](std::uint32_t pixel) {
        return part(pixel, 24) > 200 && part(pixel, 16) > 200 && part(pixel, 8) < 80 && part(pixel, 0) < 80;
    };
    std::size_t pictures = 0;
    gnome.draw(due, resources, [&](const Picture& picture) {
        ++pictures;
        EXPECT_GT(std::count_if(picture.pixels.begin(), picture.pixels.end(), reddish),
                  picture.width * picture.height / 5);
    });
    EXPECT_EQ(pictures, sizes.size());
    gnome.draw(early, resources, [&](const Picture& picture) {
        EXPECT_EQ(std::count_if(picture.pixels.begin(), picture.pixels.end(), reddish), 0);
    });
}

TEST(TrayHost, OpensTheMenuOfARefusedClickOnPlasmaOnly) {
    EXPECT_TRUE(TrayHost::ofProcess("kded5").opensMenuIfRefused);
    EXPECT_TRUE(TrayHost::ofProcess("kded6").opensMenuIfRefused);
    EXPECT_FALSE(TrayHost::ofProcess("lxqt-panel").opensMenuIfRefused);
}

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
    for (const auto& [secondsLeft, words] : table) {
        EXPECT_EQ(inWords(secondsLeft), words) << secondsLeft;
    }
}

} // namespace
} // namespace platform::linux
