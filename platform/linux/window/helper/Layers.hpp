#pragma once

// The layers that some Wayland compositors have above ordinary windows. A window in one cannot be moved, and has
// all keys or none: a click alone does not move the keyboard there.

#include "platform/linux/window/helper/Gtk.hpp"

namespace platform::linux {

/// Puts `window`, which is not on the screen yet, into a layer. Returns false if there are none.
bool putInLayer(GtkWindow* window);

bool isInLayer(GtkWindow* window);

/// Gives `window`, which is in a layer, all keys or none.
void setHasKeyboard(GtkWindow* window, bool hasKeyboard);

/// Puts a window in a layer above all others, with the keyboard, or below one that is there. Does nothing to a
/// window in no layer.
void setIsInFront(GtkWindow* window, bool isInFront);

} // namespace platform::linux
