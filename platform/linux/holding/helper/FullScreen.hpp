#pragma once

// Whether the user is in front of a full-screen window. X11 tells that of the active window; Wayland tells nobody.

#include <optional>

/// Nothing if it cannot be known.
std::optional<bool> isFullScreen();
