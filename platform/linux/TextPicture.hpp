#pragma once

// The square picture of the status item for panels that show no text: the text as large as it fits, above a thin
// bar of the time left. A halo keeps it legible on light and on dark panels.

#include "platform/NSImage.hpp"
#include "platform/linux/Picture.hpp"

#include <optional>
#include <string_view>

namespace platform::freedesktop {

/// Draws `text` into a square of `size` pixels, in white if no colour is given. `shareLeft`, from 1 down to 0, is
/// the length of the bar; without it there is none.
Picture drawTextPicture(int size, std::string_view text, const std::optional<NSColor>& colour,
                        const std::optional<double>& shareLeft);

} // namespace platform::freedesktop
