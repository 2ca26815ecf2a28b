#include "platform/linux/drawing/Png.hpp"

#include "platform/linux/Resources.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "tests/support/Pixels.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

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

TEST(Png, ReadsThePicturesOfTheProgram) {
    for (const char* const name : {"Marvelode", "MarvelodeGrey"}) {
        for (const int size : panelSizes) {
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

TEST(Png, ReadsNothingFromDamagedFiles) {
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

} // namespace
} // namespace platform::linux
