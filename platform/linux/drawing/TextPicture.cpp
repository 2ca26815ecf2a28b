#include "platform/linux/drawing/TextPicture.hpp"

#include "platform/linux/drawing/StrokeFont.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace platform::linux {
namespace {

constexpr NSColor textColour{1, 1, 1};
constexpr NSColor plateColour{0.06, 0.08, 0.10};
constexpr NSColor barColour{0.36, 0.80, 0.72}; // the hills in the program's own picture
constexpr NSColor trackColour{0.27, 0.31, 0.33};
constexpr int largestOnOwnGrid = 24;
constexpr double textHeight = 0.62; // of the picture's

int rounded(double number) { return static_cast<int>(std::lround(number)); }

int scaleOf(int size) { return size > largestOnOwnGrid ? 2 : 1; }

std::uint32_t byteOf(double share) {
    return static_cast<std::uint32_t>(rounded(std::clamp(share, 0.0, 1.0) * 255));
}

std::uint32_t opaque(const NSColor& colour) {
    return 0xFF000000U | byteOf(colour.redComponent) << 16U | byteOf(colour.greenComponent) << 8U |
           byteOf(colour.blueComponent);
}

/// Mixes `share` of `colour` into the pixel, which stays as transparent as it is.
void mix(std::uint32_t& pixel, std::uint32_t colour, double share) {
    std::uint32_t mixed = pixel & 0xFF000000U;
    for (const unsigned shift : {16U, 8U, 0U}) {
        const double before = pixel >> shift & 0xFFU;
        const double after = colour >> shift & 0xFFU;
        mixed |= static_cast<std::uint32_t>(rounded(before + (after - before) * share)) << shift;
    }
    pixel = mixed;
}

/// A rounded rectangle that fills the picture.
Picture plate(int width, int height) {
    const double radius = height / 6.0;
    Picture picture{width, height};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double aside = std::max({radius - (x + 0.5), x + 0.5 - (width - radius), 0.0});
            const double above = std::max({radius - (y + 0.5), y + 0.5 - (height - radius), 0.0});
            const double alpha = radius - std::hypot(aside, above) + 0.5;
            picture.at(x, y) = byteOf(alpha) << 24U | (opaque(plateColour) & 0xFFFFFFU);
        }
    }
    return picture;
}

/// The cells of the picture's grid that a text may fill.
struct Room {
    int left;
    int top;
    int width;
    int height;
};

void paintText(Picture& picture, std::string_view text, const std::optional<NSColor>& colour, const Room& room) {
    const int scale = scaleOf(picture.height);
    const StrokeText layout{text, room.width, room.height};
    const double half = scale * layout.thickness() / 2;
    DistanceField field{picture.width, picture.height};
    layout.addTo(field, scale, room.left + (room.width - layout.width() + 1) / 2, room.top, half + 1);
    for (int y = 0; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            mix(picture.at(x, y), opaque(colour.value_or(textColour)),
                std::clamp(half - field.at(x, y) + 0.5, 0.0, 1.0));
        }
    }
}

void paintBar(Picture& picture, int height, const std::optional<NSColor>& colour, double share) {
    for (int y = picture.height - height; y < picture.height; ++y) {
        for (int x = 0; x < picture.width; ++x) {
            mix(picture.at(x, y), opaque(trackColour), 1);
            mix(picture.at(x, y), opaque(colour.value_or(barColour)),
                std::clamp(picture.width * share - x, 0.0, 1.0));
        }
    }
}

/// How many columns at the picture's left are empty.
int emptyColumns(const Picture& picture) {
    for (int x = 0; x < picture.width; ++x) {
        for (int y = 0; y < picture.height; ++y) {
            if (picture.at(x, y) >> 24U != 0) {
                return x;
            }
        }
    }
    return picture.width;
}

} // namespace

Picture drawTextPicture(int size, std::string_view text, const std::optional<NSColor>& colour,
                        const std::optional<double>& shareLeft) {
    constexpr int barHeight = 2;
    constexpr int margin = 1;
    constexpr double legible = 1.5; // thickness of strokes
    const int scale = scaleOf(size);
    const int cells = size / scale;
    const int height = rounded(cells * textHeight);
    Room room{margin, (cells - barHeight - height + 1) / 2, cells - 2 * margin, height};
    if (StrokeText{text, room.width, room.height}.thickness() < legible) {
        room.left = 0;
        room.width = cells;
    }
    Picture picture = plate(size, size);
    paintText(picture, text, colour, room);
    if (shareLeft) {
        paintBar(picture, barHeight * scale, colour, *shareLeft);
    }
    return picture;
}

Picture drawTextBesideIcon(const Picture& icon, std::string_view text, const std::optional<NSColor>& colour) {
    constexpr double proportion = 50.0 / 24;
    constexpr int margin = 2;
    const int scale = scaleOf(icon.height);
    const int cells = icon.height / scale;
    Picture picture = plate(scale * rounded(cells * proportion), icon.height);
    const int empty = emptyColumns(icon);
    for (int y = 0; y < icon.height; ++y) {
        for (int x = empty; x < icon.width; ++x) {
            const std::uint32_t pixel = icon.at(x, y);
            mix(picture.at(x - empty + margin * scale, y), pixel, (pixel >> 24U) / 255.0);
        }
    }
    const int left = (icon.width - 2 * empty) / scale + 2 * margin;
    const int height = rounded(cells * textHeight);
    paintText(picture, text, colour, {left, (cells - height) / 2, picture.width / scale - left - margin, height});
    return picture;
}

Picture inColour(Picture icon, const NSColor& colour) {
    constexpr double share = 0.8;
    for (std::uint32_t& pixel : icon.pixels) {
        mix(pixel, opaque(colour), share);
    }
    return icon;
}

} // namespace platform::linux
