#pragma once

// Reads PNG files, as far as the program's own pictures need it: eight bits each of red, green, blue and alpha, not
// interlaced. Anything else counts as no picture.

#include "platform/NSImage.hpp"
#include "platform/linux/drawing/Picture.hpp"

#include <optional>
#include <string_view>

namespace platform::linux {

/// The size in pixels that the head of a PNG file states, whatever its kind of pixels; nothing if it is no PNG.
std::optional<NSSize> pngSize(std::string_view file);

/// The picture in a PNG file; nothing if it is damaged or of another kind.
std::optional<Picture> decodePng(std::string_view file);

} // namespace platform::linux
