#pragma once

// What tests of pictures ask of a pixel.

#include <cstdint>
#include <vector>

namespace platform::linux {

/// The sizes that panels ask for, in pixels.
inline const std::vector<int> panelSizes{16, 22, 24, 32, 44, 48};

/// The byte of the pixel at that bit: 24 alpha, 16 red, 8 green, 0 blue.
constexpr std::uint32_t part(std::uint32_t pixel, unsigned shift) { return pixel >> shift & 0xFFU; }

constexpr bool isRed(std::uint32_t pixel) {
    return part(pixel, 24) > 200 && part(pixel, 16) > 200 && part(pixel, 8) < 60 && part(pixel, 0) < 60;
}

constexpr bool isWhite(std::uint32_t pixel) {
    return part(pixel, 24) > 200 && part(pixel, 16) > 200 && part(pixel, 8) > 200 && part(pixel, 0) > 200;
}

} // namespace platform::linux
