#pragma once

// How the windows of this program look: their style sheet and icon, and whether they are dark.

namespace platform::linux {

/// Gives all windows of this program their look; call once, after GTK was initialised.
void setUpAppearance();

} // namespace platform::linux
