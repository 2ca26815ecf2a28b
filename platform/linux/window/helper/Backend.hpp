#pragma once

// Through which of the two display systems of a Wayland session windows are shown. GNOME lets no Wayland window
// stay above others, but one of X11, which it shows as well, stays there.

#include "platform/linux/window/Protocol.hpp"

namespace platform::linux {

/// Whether this session is one in which X11 alone keeps windows above others, and has X11.
bool isX11Better();

/// Before the toolkit is set up: has it try X11 first if the window of `request` must be seen wherever the user
/// works.
void preferX11For(const Request& request);

/// Once the toolkit is set up: whether it shows windows through X11.
bool isOnX11();

} // namespace platform::linux
