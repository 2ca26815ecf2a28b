#include "platform/linux/drawing/Png.hpp"

#include "platform/linux/glib/Handles.hpp"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace platform::linux {
namespace {

constexpr std::string_view signature{"\x89PNG\r\n\x1a\n", 8};
constexpr std::size_t headEnd = 33; // signature, then the first chunk: length, name, thirteen bytes, checksum
constexpr std::size_t bytesPerPixel = 4;
constexpr std::uint32_t largestSide = 4096;

std::uint8_t byteAt(std::string_view bytes, std::size_t position) {
    return static_cast<std::uint8_t>(bytes[position]);
}

std::uint32_t numberAt(std::string_view bytes, std::size_t position) {
    std::uint32_t number = 0;
    for (std::size_t index = 0; index < 4; ++index) {
        number = number << 8U | byteAt(bytes, position + index);
    }
    return number;
}

/// The compressed pixels, put together from the chunks that hold them.
std::string compressedPixels(std::string_view file) {
    constexpr std::size_t chunkFrame = 12; // length, name and checksum
    std::string compressed;
    std::size_t position = signature.size();
    while (file.size() - position >= chunkFrame) {
        const std::size_t length = numberAt(file, position);
        if (length > file.size() - position - chunkFrame) {
            return {};
        }
        if (file.substr(position + 4, 4) == "IDAT") {
            compressed += file.substr(position + 8, length);
        }
        position += chunkFrame + length;
    }
    return compressed;
}

/// Exactly `size` bytes that `compressed` holds; nothing if it holds fewer.
std::optional<std::string> inflated(const std::string& compressed, std::size_t size) {
    const ObjectHandle<GZlibDecompressor> decompressor{g_zlib_decompressor_new(G_ZLIB_COMPRESSOR_FORMAT_ZLIB)};
    std::string content(size, '\0');
    std::size_t taken = 0;
    std::size_t given = 0;
    while (given < size) {
        std::size_t bytesRead = 0;
        std::size_t bytesWritten = 0;
        const GConverterResult result = g_converter_convert(
            G_CONVERTER(decompressor.get()), compressed.data() + taken, compressed.size() - taken,
            content.data() + given, size - given, G_CONVERTER_NO_FLAGS, &bytesRead, &bytesWritten, nullptr);
        taken += bytesRead;
        given += bytesWritten;
        if (result == G_CONVERTER_ERROR || (result == G_CONVERTER_FINISHED && given < size)) {
            return std::nullopt;
        }
    }
    return content;
}

/// The one of the three neighbours' values that is nearest to what they suggest together.
int paeth(int left, int above, int aboveLeft) {
    const int suggestion = left + above - aboveLeft;
    const int toLeft = std::abs(suggestion - left);
    const int toAbove = std::abs(suggestion - above);
    const int toAboveLeft = std::abs(suggestion - aboveLeft);
    if (toLeft <= toAbove && toLeft <= toAboveLeft) {
        return left;
    }
    return toAbove <= toAboveLeft ? above : aboveLeft;
}

/// What a row's filter predicts for a byte; nothing if the file names no such filter.
std::optional<int> prediction(int filter, int left, int above, int aboveLeft) {
    switch (filter) {
    case 0:
        return 0;
    case 1:
        return left;
    case 2:
        return above;
    case 3:
        return (left + above) / 2;
    case 4:
        return paeth(left, above, aboveLeft);
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<NSSize> pngSize(std::string_view file) {
    if (file.size() < headEnd || !file.starts_with(signature) || file.substr(12, 4) != "IHDR") {
        return std::nullopt;
    }
    return NSSize{static_cast<double>(numberAt(file, 16)), static_cast<double>(numberAt(file, 20))};
}

std::optional<Picture> decodePng(std::string_view file) {
    constexpr std::string_view eightBitRgbaNotInterlaced{"\x08\x06\0\0\0", 5};
    if (!pngSize(file) || file.substr(24, 5) != eightBitRgbaNotInterlaced) {
        return std::nullopt;
    }
    const std::uint32_t width = numberAt(file, 16);
    const std::uint32_t height = numberAt(file, 20);
    if (width == 0 || height == 0 || width > largestSide || height > largestSide) {
        return std::nullopt;
    }
    const std::size_t rowLength = width * bytesPerPixel;
    std::optional<std::string> content = inflated(compressedPixels(file), (rowLength + 1) * height);
    if (!content) {
        return std::nullopt;
    }
    std::string previous(rowLength, '\0');
    Picture picture{static_cast<int>(width), static_cast<int>(height)};
    for (std::size_t row = 0; row < height; ++row) {
        const int filter = byteAt(*content, row * (rowLength + 1));
        std::string current = content->substr(row * (rowLength + 1) + 1, rowLength);
        for (std::size_t index = 0; index < rowLength; ++index) {
            const bool isFirst = index < bytesPerPixel;
            const std::optional<int> predicted =
                prediction(filter, isFirst ? 0 : byteAt(current, index - bytesPerPixel), byteAt(previous, index),
                           isFirst ? 0 : byteAt(previous, index - bytesPerPixel));
            if (!predicted) {
                return std::nullopt;
            }
            current[index] = static_cast<char>(byteAt(current, index) + *predicted);
        }
        for (std::size_t column = 0; column < width; ++column) {
            const std::uint32_t redGreenBlueAlpha = numberAt(current, column * bytesPerPixel);
            picture.pixels[row * width + column] = redGreenBlueAlpha >> 8U | redGreenBlueAlpha << 24U;
        }
        previous = std::move(current);
    }
    return picture;
}

} // namespace platform::linux
