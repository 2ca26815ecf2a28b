#pragma once

// Pictures of the status item's text for panels that show none of it: on a dark plate, so that it is legible
// whatever the panel's own colour is. Sizes above 24 pixels are drawn on the grid of the half: a panel may halve
// them and they stay sharp.

#include "platform/NSImage.hpp"
#include "platform/linux/drawing/Picture.hpp"

#include <optional>
#include <string_view>

namespace platform::linux {

/// Draws `text` into a square of `size` pixels as large as it fits, in white if no colour is given. `shareLeft`,
/// from 1 down to 0, is the length of the bar below it; without it there is none.
Picture drawTextPicture(int size, std::string_view text, const std::optional<NSColor>& colour,
                        const std::optional<double>& shareLeft);

/// Draws the square `icon` and beside it `text`, in white if no colour is given: as high as the icon, twice as
/// wide.
Picture drawTextBesideIcon(const Picture& icon, std::string_view text, const std::optional<NSColor>& colour);

/// Returns the grey `icon` in shades of that colour.
Picture inColour(Picture icon, const NSColor& colour);

} // namespace platform::linux
