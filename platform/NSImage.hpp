#pragma once

// Pictures, fonts, colours and styled text: plain values that say what is to be drawn. Desktops draw them.

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// A width and a height in points.
struct NSSize {
    double width = 0;
    double height = 0;
    bool operator==(const NSSize&) const = default;
};

/// A picture from the program's resources, with the size at which it is to be drawn.
struct NSImage {
    std::string name;          ///< The resource's file name with its extension.
    std::filesystem::path url; ///< Where the resource lies.
    NSSize size;               ///< In points; at first the picture's own size.

    /// The picture of that file name among the resources; nothing if it is missing or no picture.
    static std::optional<NSImage> named(std::string_view name);

    bool operator==(const NSImage&) const = default;
};

/// A font that every desktop has.
struct NSFont {
    enum class Design { Proportional, Monospaced };
    enum class Weight { Regular };

    Design design;
    double size; ///< In points.
    Weight weight;

    static NSFont monospacedSystemFont(double size, Weight weight) { return {Design::Monospaced, size, weight}; }

    bool operator==(const NSFont&) const = default;
};

/// An opaque colour; each part runs from 0 to 1.
struct NSColor {
    double redComponent;
    double greenComponent;
    double blueComponent;

    static const NSColor red; ///< Plain red, the same in every appearance.

    bool operator==(const NSColor&) const = default;
};

inline constexpr NSColor NSColor::red{1, 0, 0};

/// A text of one style.
struct NSAttributedString {
    std::string string;
    std::optional<NSFont> font;             ///< The place's own font when absent.
    std::optional<NSColor> foregroundColor; ///< The place's own colour when absent.

    bool operator==(const NSAttributedString&) const = default;
};

} // namespace platform
