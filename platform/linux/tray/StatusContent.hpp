#pragma once

// What the status item has to say at one moment, however a panel may show it.

#include "platform/Date.hpp"
#include "platform/NSImage.hpp"

#include <optional>
#include <string>

namespace platform::linux {

struct StatusContent {
    std::string text;                ///< The text beside the picture; may be empty.
    std::optional<NSColor> colour;   ///< The text's colour; the panel's own when absent.
    std::string image;               ///< The picture's resource name with its extension; empty for none.
    std::optional<double> shareLeft; ///< How much of the time until the break is left, from 1 down to 0.
    std::string words;               ///< What tooltips and screen readers say: a sentence that is true, or a name.

    bool operator==(const StatusContent&) const = default;
};

/// Puts the time until the break in words in place of `text`, as exact as the text beside the picture is: "Break in
/// 9 minutes". Once the break is due, `secondsLeft` is negative: "Break due for 2 minutes".
void putInWords(std::string& text, TimeInterval secondsLeft);

} // namespace platform::linux
