#pragma once

// The widgets for texts: labels with links, in the fonts that a view can ask for.

#include "platform/View.hpp"
#include "platform/linux/window/helper/Gtk.hpp"

namespace platform::linux {

/// A label for the text. The reference is floating.
GtkWidget* label(const node::Text& text, Font font);

/// Shows another text in `label`, unless it is the one that is there. Returns false if the label names a control,
/// so that it cannot.
bool setText(GtkLabel* label, const node::Text& text);

} // namespace platform::linux
