#pragma once

// How each panel is given the status item, since none shows picture, text and colour as another does. A panel that
// wants something else is a line in the table of known hosts, or one more style.

#include "platform/linux/Resources.hpp"
#include "platform/linux/drawing/Picture.hpp"
#include "platform/linux/tray/StatusContent.hpp"

#include <functional>
#include <span>
#include <string>
#include <string_view>

namespace platform::linux {

/// What is known of a program that shows status items.
struct TrayHost {
    enum class Style {
        TextInPicture,        ///< A square picture with the text above a bar of the time left.
        TextBesideIcon,       ///< A wide picture of the program's own picture and the text beside it.
        LabelBesideIcon,      ///< The program's own picture, in the text's colour, and a label beside it.
        LabelBesideNamedIcon, ///< The program's own picture, named by its file, and a label beside it.
    };

    std::string_view process; ///< How the name of its process begins; the kernel keeps 15 characters.
    Style style;
    std::span<const int> pictureSizes; ///< In pixels; what it is offered to choose from.
    bool readsAllAtOnce;               ///< It reads all properties anew whichever signal it gets.
    bool opensMenuIfRefused = false;   ///< A click that the item refuses opens its menu instead.

    /// The host that runs as a process of that name; for unknown ones, what suits most.
    static const TrayHost& ofProcess(std::string_view name);

    /// What it is given, for people.
    std::string_view inWords() const;

    /// Whether it is to be offered a label.
    bool hasLabel() const { return style == Style::LabelBesideIcon || style == Style::LabelBesideNamedIcon; }

    /// Whether it had better fetch the picture of `content` if it shows the one of `shown`.
    bool needsNewPicture(const StatusContent& shown, const StatusContent& content) const;

    /// Hands the picture of `content` to `take`, in each of the sizes that can be had; none if it is named.
    void draw(const StatusContent& content, const Resources& resources,
              const std::function<void(const Picture&)>& take) const;

    /// The file of the picture of `content`; empty unless the host wants it named.
    std::string pictureFile(const StatusContent& content, const Resources& resources) const;
};

/// The name of that process, as far as the kernel keeps it; empty if it cannot be known.
std::string processName(unsigned identifier);

} // namespace platform::linux
