#include "platform/linux/TextPicture.hpp"

#include "platform/linux/StrokeFont.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace platform::freedesktop {
namespace {

constexpr NSColor white{1, 1, 1};
constexpr NSColor barColour{0.36, 0.80, 0.72}; // the hills in the program's own picture
constexpr double haloOpacity = 0.72;
constexpr double trackOpacity = 0.55;

int rounded(double number) { return static_cast<int>(std::lround(number)); }

std::uint32_t pixel(const NSColor& colour, double alpha) {
    const auto part = [](double share) { return static_cast<std::uint32_t>(rounded(std::clamp(share, 0.0, 1.0) * 255)); };
    return part(alpha) << 24U | part(colour.redComponent) << 16U | part(colour.greenComponent) << 8U |
           part(colour.blueComponent);
}

/// `colour`, as far as the pixel is covered by it, over a black halo.
std::uint32_t overHalo(const NSColor& colour, double covered, double halo) {
    const double alpha = covered + halo * (1 - covered);
    if (alpha <= 0) {
        return 0;
    }
    const double share = covered / alpha;
    return pixel({colour.redComponent * share, colour.greenComponent * share, colour.blueComponent * share}, alpha);
}

/// The largest layout of `text` that fits.
StrokeText fitting(std::string_view text, int width, int height) {
    constexpr int smallest = 5;
    StrokeText layout{text, height};
    while (layout.width() > width && layout.height() > smallest) {
        layout = StrokeText{text, layout.height() - 1};
    }
    return layout;
}

} // namespace

Picture drawTextPicture(int size, std::string_view text, const std::optional<NSColor>& colour,
                        const std::optional<double>& shareLeft) {
    const int barHeight = std::max(2, rounded(size / 9.0));
    const int barTop = size - barHeight;
    const double haloWidth = std::max(1.0, size / 20.0);

    const int roomForText = barTop - std::max(1, rounded(size / 16.0));
    const StrokeText layout = fitting(text, size, std::min(roomForText, rounded(size * 0.64)));
    const double half = layout.thickness() / 2.0;
    const double reach = half + haloWidth + 1;
    DistanceField field{size, size};
    layout.addTo(field, (size - layout.width()) / 2, (roomForText - layout.height() + 1) / 2, reach);

    Picture picture{size, size};
    const NSColor textColour = colour.value_or(white);
    for (int y = 0; y < size; ++y) {
        for (int x = 0; x < size; ++x) {
            const double distance = field.at(x, y);
            const double covered = std::clamp(half - distance + 0.5, 0.0, 1.0);
            const double halo = std::clamp((half + haloWidth - distance) / haloWidth, 0.0, 1.0);
            picture.at(x, y) = overHalo(textColour, covered, haloOpacity * std::min(1.0, halo * 1.5));
        }
    }
    if (shareLeft) {
        const double end = size * *shareLeft;
        for (int y = barTop; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                picture.at(x, y) = overHalo(colour.value_or(barColour), std::clamp(end - x, 0.0, 1.0), trackOpacity);
            }
        }
    }
    return picture;
}

} // namespace platform::freedesktop
