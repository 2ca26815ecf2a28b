#pragma once

// What the status item has to say at one moment, however a panel may show it.

#include "platform/NSImage.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace platform::freedesktop {

struct StatusContent {
    std::string text;                ///< The text beside the picture; may be empty.
    std::optional<NSColor> colour;   ///< The text's colour; the panel's own when absent.
    std::string image;               ///< The picture's resource name with its extension; empty for none.
    std::optional<double> shareLeft; ///< How much of the time until the break is left, from 1 down to 0.

    bool operator==(const StatusContent&) const = default;
};

/// The text in words, for tooltips and screen readers: "Break in 9 minutes" for "9m".
std::string inWords(std::string_view text);

} // namespace platform::freedesktop
