#pragma once

// The picture of an alert, and in its corner the sign that tells what kind of alert it is.

#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/helper/Gtk.hpp"

namespace platform::linux {

/// The alert's own picture, or else the application's. The reference is floating.
GtkWidget* alertPicture(const AlertRequest& request);

} // namespace platform::linux
