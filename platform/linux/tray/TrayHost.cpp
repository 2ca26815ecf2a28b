#include "platform/linux/tray/TrayHost.hpp"

#include "platform/linux/drawing/Png.hpp"
#include "platform/linux/drawing/TextPicture.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

namespace platform::linux {
namespace {

using Style = TrayHost::Style;

constexpr std::array usualSizes{16, 22, 24, 32, 44, 48};
// For hosts that take the largest picture and shrink it: mostly to 22 pixels or to 16, or to twice as many on
// screens of double density.
constexpr std::array twice22{44};
constexpr std::array twice16{32};
constexpr std::array sizesOfMate{16, 24, 32, 48}; // fits the height of the panel

constexpr std::array hosts{
    TrayHost{"ayatana-indicat", Style::LabelBesideNamedIcon, usualSizes, false},
    TrayHost{"gnome-shell", Style::LabelBesideIcon, usualSizes, false},
    TrayHost{"kded", Style::TextInPicture, usualSizes, false, true}, // Plasma's
    TrayHost{"mate-panel", Style::TextBesideIcon, sizesOfMate, false},
    TrayHost{"notification-ar", Style::TextBesideIcon, sizesOfMate, false}, // MATE's
    TrayHost{"panel-", Style::TextInPicture, twice22, true},                // a plugin of Xfce's
    TrayHost{"waybar", Style::TextBesideIcon, twice16, false},
    TrayHost{"wrapper-2.0", Style::TextInPicture, twice22, true},          // the same plugin from Xfce 4.20 on
    TrayHost{"xapp-sn-watcher", Style::TextBesideIcon, usualSizes, false}, // Cinnamon's
    TrayHost{"", Style::TextInPicture, usualSizes, false},                 // any other
};

/// The bar alone is worth a new picture only now and then: each costs the panel and us a few wake-ups.
bool isBarOutdated(const std::optional<double>& shown, const std::optional<double>& now) {
    constexpr double worthShowing = 1.0 / 8;
    return shown.has_value() != now.has_value() || (shown && std::abs(*shown - *now) >= worthShowing);
}

/// The file of the picture of that resource name in `size` pixels: each picture has its small sizes in a folder
/// beside it.
std::optional<std::filesystem::path> smallPictureFile(const std::string& image, int size,
                                                      const Resources& resources) {
    return resources.find("status/" + image.substr(0, image.rfind('.')) + "-" + std::to_string(size), "png");
}

std::optional<Picture> smallPicture(const std::string& image, int size, const Resources& resources) {
    const auto file = smallPictureFile(image, size, resources);
    return file ? decodePng(contentsOfFile(*file).value_or("")) : std::nullopt;
}

} // namespace

const TrayHost& TrayHost::ofProcess(std::string_view name) {
    return *std::find_if(hosts.begin(), hosts.end(),
                         [&](const TrayHost& host) { return name.starts_with(host.process); });
}

std::string_view TrayHost::inWords() const {
    switch (style) {
    case Style::TextInPicture:
        return "the text in a picture";
    case Style::TextBesideIcon:
        return "a picture of icon and text";
    case Style::LabelBesideIcon:
        return "an icon and a label";
    case Style::LabelBesideNamedIcon:
        return "the name of an icon and a label";
    }
    return {};
}

bool TrayHost::needsNewPicture(const StatusContent& shown, const StatusContent& content) const {
    if (shown.image != content.image) {
        return true;
    }
    if (shown.colour != content.colour) {
        return style != Style::LabelBesideNamedIcon;
    }
    if (hasLabel()) {
        return false;
    }
    return shown.text != content.text ||
           (style == Style::TextInPicture && isBarOutdated(shown.shareLeft, content.shareLeft));
}

void TrayHost::draw(const StatusContent& content, const Resources& resources,
                    const std::function<void(const Picture&)>& take) const {
    if (style == Style::LabelBesideNamedIcon) {
        return;
    }
    const bool isTextDrawn = !hasLabel() && !content.text.empty();
    const bool isIconDrawn = !isTextDrawn || style == Style::TextBesideIcon;
    for (const int size : pictureSizes) {
        const std::optional<Picture> icon =
            isIconDrawn ? smallPicture(content.image, size, resources) : std::nullopt;
        if (isTextDrawn && icon) {
            take(drawTextBesideIcon(*icon, content.text, content.colour));
        } else if (isTextDrawn) {
            take(drawTextPicture(size, content.text, content.colour, content.shareLeft));
        } else if (icon) {
            take(content.colour ? inColour(*icon, *content.colour) : *icon);
        }
    }
}

std::string TrayHost::pictureFile(const StatusContent& content, const Resources& resources) const {
    constexpr int size = 22;
    if (style != Style::LabelBesideNamedIcon) {
        return {};
    }
    return smallPictureFile(content.image, size, resources).value_or("").string();
}

std::string processName(unsigned identifier) {
    const std::string name = contentsOfFile("/proc/" + std::to_string(identifier) + "/comm").value_or("");
    return name.substr(0, name.find('\n'));
}

} // namespace platform::linux
