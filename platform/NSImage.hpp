#pragma once

// Pictures, fonts, colours and styled text: plain values that say what is to be drawn. Desktops draw them.

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

/// A width and a height in points.
struct NSSize {
    double width = 0;
    double height = 0;
    bool operator==(const NSSize&) const = default;
};

/// A picture from the program's resources, with the size at which it is to be drawn.
class NSImage {
public:
    NSImage(std::string name, std::filesystem::path url, NSSize size)
        : size{size}
        , _file{std::make_shared<const File>(File{std::move(name), std::move(url)})} {}

    /// The picture of that file name among the resources; nothing if it is missing or no picture.
    static std::optional<NSImage> named(std::string_view name);

    /// The resource's file name with its extension.
    const std::string& name() const { return _file->name; }

    /// Where the resource lies.
    const std::filesystem::path& url() const { return _file->url; }

    NSSize size; ///< In points; at first the picture's own size.

    bool operator==(const NSImage& other) const { return size == other.size && *_file == *other._file; }

private:
    struct File {
        std::string name;
        std::filesystem::path url;
        bool operator==(const File&) const = default;
    };

    std::shared_ptr<const File> _file; ///< Shared by all copies, of which one is made every second.
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
