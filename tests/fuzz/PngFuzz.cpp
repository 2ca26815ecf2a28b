// Pictures: any bytes in place of a file, and any rows in a file that is well-formed.

#include "platform/linux/drawing/Png.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace platform;
using namespace platform::linux;
using namespace std::string_literals;

constexpr double largestSide = 256; // larger ones are read in the same way, and take long

std::string compressed(const std::string& bytes) {
    const ObjectHandle<GZlibCompressor> compressor{g_zlib_compressor_new(G_ZLIB_COMPRESSOR_FORMAT_ZLIB, 1)};
    std::string result(bytes.size() + 1000, '\0');
    std::size_t bytesRead = 0;
    std::size_t bytesWritten = 0;
    g_converter_convert(G_CONVERTER(compressor.get()), bytes.data(), bytes.size(), result.data(), result.size(),
                        G_CONVERTER_INPUT_AT_END, &bytesRead, &bytesWritten, nullptr);
    result.resize(bytesWritten);
    return result;
}

std::string bytesOf(std::uint32_t number) {
    std::string bytes;
    for (const unsigned shift : {24U, 16U, 8U, 0U}) {
        bytes += static_cast<char>(number >> shift);
    }
    return bytes;
}

/// A part of a file, whose checksum the reader leaves alone.
std::string chunk(const std::string& name, const std::string& content) {
    return bytesOf(static_cast<std::uint32_t>(content.size())) + name + content + "\0\0\0\0"s;
}

/// A file of that width whose rows, filters included, are `rows`.
std::string fileOf(std::uint32_t width, std::uint32_t height, const std::string& rows) {
    return "\x89PNG\r\n\x1a\n" + chunk("IHDR", bytesOf(width) + bytesOf(height) + "\x08\x06\0\0\0"s) +
           chunk("IDAT", compressed(rows)) + chunk("IEND", "");
}

/// The same picture as a file without filters.
std::string fileOf(const Picture& picture) {
    std::string rows;
    for (int y = 0; y < picture.height; ++y) {
        rows += '\0';
        for (int x = 0; x < picture.width; ++x) {
            const std::uint32_t pixel = picture.at(x, y);
            rows += bytesOf(pixel << 8U | pixel >> 24U);
        }
    }
    return fileOf(static_cast<std::uint32_t>(picture.width), static_cast<std::uint32_t>(picture.height), rows);
}

void checkFile(std::string_view file) {
    const std::optional<NSSize> size = pngSize(file);
    if (size && std::max(size->width, size->height) > largestSide) {
        return;
    }
    const std::optional<Picture> picture = decodePng(file);
    if (!picture) {
        return;
    }
    fuzz::require(size && size->width == picture->width && size->height == picture->height,
                  "a picture has the size that its head states");
    const std::optional<Picture> again = decodePng(fileOf(*picture));
    fuzz::require(again && again->pixels == picture->pixels,
                  "what is read is the same when written and read again");
}

/// The first byte is the width, the others are rows.
void checkRows(std::string_view input) {
    const std::uint32_t width = input.empty() ? 0 : static_cast<unsigned char>(input[0]) % 16 + 1;
    const auto height = static_cast<std::uint32_t>(width == 0 ? 0 : (input.size() - 1) / (width * 4 + 1));
    if (height == 0 || height > largestSide) {
        return;
    }
    const std::size_t rowLength = width * 4 + 1;
    const std::string rows{input.substr(1, height * rowLength)};
    bool areFiltersKnown = true;
    for (std::size_t row = 0; row < height; ++row) {
        areFiltersKnown = areFiltersKnown && static_cast<unsigned char>(rows[row * rowLength]) <= 4;
    }
    const std::string file = fileOf(width, height, rows);
    fuzz::require(decodePng(file).has_value() == areFiltersKnown, "rows of known filters are a picture");
    checkFile(file);
}

} // namespace

void fuzz::check(std::string_view input) {
    checkFile(input);
    checkRows(input);
}
