#include "platform/linux/TrayHost.hpp"

#include "platform/linux/Png.hpp"
#include "platform/linux/TextPicture.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <utility>

namespace platform::freedesktop {
namespace {

using Style = TrayHost::Style;

constexpr std::array usualSizes{16, 22, 24, 32, 44, 48};
// Xfce takes the largest picture and shrinks it, mostly to 22 pixels, on screens of double density to 44.
constexpr std::array sizeForShrinking{44};

constexpr TrayHost anyOther{"", Style::TextInPicture, usualSizes, false};
constexpr std::array known{
    TrayHost{"ayatana-indicat", Style::LabelBesideIcon, usualSizes, false},
    TrayHost{"gnome-shell", Style::LabelBesideIcon, usualSizes, false},
    TrayHost{"xfce4-panel", Style::TextInPicture, sizeForShrinking, true},
};

/// The bar alone is worth a new picture only now and then: each costs the panel and us a few wake-ups.
bool isBarOutdated(const std::optional<double>& shown, const std::optional<double>& now) {
    constexpr double worthShowing = 1.0 / 8;
    return shown.has_value() != now.has_value() || (shown && std::abs(*shown - *now) >= worthShowing);
}

/// The picture of that resource name in `size` pixels: each picture has its small sizes in a folder beside it.
std::optional<Picture> smallPicture(const std::string& image, int size, const Resources& resources) {
    const std::string stem = image.substr(0, image.rfind('.'));
    const auto file = resources.find("status/" + stem + "-" + std::to_string(size), "png");
    return file ? decodePng(contentsOfFile(*file).value_or("")) : std::nullopt;
}

} // namespace

const TrayHost& TrayHost::ofProcess(std::string_view name) {
    const auto* found =
        std::find_if(known.begin(), known.end(), [&](const TrayHost& host) { return host.process == name; });
    return found == known.end() ? anyOther : *found;
}

bool TrayHost::needsNewPicture(const StatusContent& shown, const StatusContent& content) const {
    const bool hasNewText = shown.text != content.text || shown.colour != content.colour;
    return shown.image != content.image ||
           (style == Style::TextInPicture && (hasNewText || isBarOutdated(shown.shareLeft, content.shareLeft)));
}

std::vector<Picture> TrayHost::pictures(const StatusContent& content, const Resources& resources) const {
    std::vector<Picture> pictures;
    for (const int size : pictureSizes) {
        if (style == Style::TextInPicture && !content.text.empty()) {
            pictures.push_back(drawTextPicture(size, content.text, content.colour, content.shareLeft));
        } else if (auto picture = smallPicture(content.image, size, resources)) {
            pictures.push_back(std::move(*picture));
        }
    }
    return pictures;
}

} // namespace platform::freedesktop
