#include "platform/linux/HostStyle.hpp"

#include "platform/linux/Png.hpp"
#include "platform/linux/TextPicture.hpp"

#include <array>
#include <cmath>
#include <string>
#include <utility>

namespace platform::freedesktop {
namespace {

constexpr std::array sizes{16, 22, 24, 32, 44, 48};

constexpr std::array<std::pair<std::string_view, HostStyle>, 2> knownHosts{{
    {"gnome-shell", HostStyle::LabelBesideIcon},
    {"ayatana-indicat", HostStyle::LabelBesideIcon},
}};

/// The bar alone is worth a new picture only now and then: each costs the panel and us a few wake-ups.
bool isBarOutdated(const std::optional<double>& shown, const std::optional<double>& now) {
    constexpr double worthShowing = 1.0 / 8;
    return shown.has_value() != now.has_value() || (shown && std::abs(*shown - *now) >= worthShowing);
}

/// The picture of that resource name in `size` pixels: each picture has its small sizes in a folder beside it.
std::optional<Picture> small(const std::string& image, int size, const Resources& resources) {
    const std::string stem = image.substr(0, image.rfind('.'));
    const auto file = resources.find("status/" + stem + "-" + std::to_string(size), "png");
    return file ? decodePng(contentsOfFile(*file).value_or("")) : std::nullopt;
}

} // namespace

HostStyle styleOfHost(std::string_view processName) {
    for (const auto& [name, style] : knownHosts) {
        if (name == processName) {
            return style;
        }
    }
    return HostStyle::TextInPicture;
}

bool hasLabel(HostStyle style) { return style == HostStyle::LabelBesideIcon; }

bool needsNewPicture(HostStyle style, const StatusContent& shown, const StatusContent& content) {
    if (shown.image != content.image) {
        return true;
    }
    switch (style) {
    case HostStyle::TextInPicture:
        return shown.text != content.text || shown.colour != content.colour ||
               isBarOutdated(shown.shareLeft, content.shareLeft);
    case HostStyle::LabelBesideIcon:
        return false;
    }
    return false;
}

std::vector<Picture> picturesFor(HostStyle style, const StatusContent& content, const Resources& resources) {
    const bool isText = style == HostStyle::TextInPicture && !content.text.empty();
    std::vector<Picture> pictures;
    for (const int size : sizes) {
        if (isText) {
            pictures.push_back(drawTextPicture(size, content.text, content.colour, content.shareLeft));
        } else if (auto picture = small(content.image, size, resources)) {
            pictures.push_back(std::move(*picture));
        }
    }
    return pictures;
}

} // namespace platform::freedesktop
