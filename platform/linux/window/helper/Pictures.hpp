#pragma once

// Pictures from files and from the icon theme, sharp on screens of every density.

#include "platform/linux/window/helper/Gtk.hpp"

#include <filesystem>

namespace platform::linux {

/// The PNG file at `path` in that size; an empty widget if it cannot be read. The reference is floating.
GtkWidget* picture(const std::filesystem::path& path, double width, double height);

/// The PNG file at `path`, that high and as wide as it needs. The reference is floating.
GtkWidget* picture(const std::filesystem::path& path, double height);

/// The application's icon at that size, in the end that of the user's icon theme; null if the program is not
/// installed with its icons, or only with smaller ones. The reference is floating.
GtkWidget* applicationIcon(int size);

/// The name of the application's icon and desktop file.
inline constexpr const char* applicationId = "org.marvelode.Timer";

} // namespace platform::linux
