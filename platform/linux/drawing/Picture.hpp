#pragma once

// A small picture in memory: what a panel is sent to show as the status item.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace platform::linux {

/// Pixels row by row from the top left, each 0xAARRGGBB with straight alpha.
struct Picture {
    Picture(int pictureWidth, int pictureHeight)
        : width{pictureWidth}
        , height{pictureHeight}
        , pixels(static_cast<std::size_t>(pictureWidth) * static_cast<std::size_t>(pictureHeight)) {}

    int width;
    int height;
    std::vector<std::uint32_t> pixels;

    std::uint32_t& at(int x, int y) { return pixels[static_cast<std::size_t>(y * width + x)]; }
    std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

} // namespace platform::linux
