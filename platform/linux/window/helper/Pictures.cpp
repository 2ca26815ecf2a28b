#include "platform/linux/window/helper/Pictures.hpp"

#include <bit>
#include <cmath>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

namespace platform::linux {
namespace {

constexpr double asWideAsNeeded = -1;
constexpr unsigned largestInstalledIcon = 512;

/// The density of what is not on a screen yet: of any screen that is on.
int scaleOfScreens() {
    GdkMonitor* any = gdk_display_get_monitor(gdk_display_get_default(), 0);
    return any ? gdk_monitor_get_scale_factor(any) : 1;
}

GtkWidget* loaded(const std::filesystem::path& path, double width, double height) {
    GtkWidget* image = gtk_image_new();
    const int scale = scaleOfScreens();
    const int pixelWidth = width == asWideAsNeeded ? -1 : static_cast<int>(std::lround(width * scale));
    const int pixelHeight = static_cast<int>(std::lround(height * scale));
    const std::unique_ptr<GdkPixbuf, decltype(&g_object_unref)> pixels{
        gdk_pixbuf_new_from_file_at_scale(path.c_str(), pixelWidth, pixelHeight, width == asWideAsNeeded, nullptr),
        g_object_unref};
    if (pixels) {
        const std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)> surface{
            gdk_cairo_surface_create_from_pixbuf(pixels.get(), scale, nullptr), cairo_surface_destroy};
        gtk_image_set_from_surface(GTK_IMAGE(image), surface.get());
    }
    return image;
}

/// The application's icon of that many pixels, or the next larger one, that is installed for all icon themes;
/// empty if there is none.
std::filesystem::path installedIcon(int pixels) {
    std::vector<std::filesystem::path> folders{g_get_user_data_dir()};
    for (const gchar* const* folder = g_get_system_data_dirs(); *folder; ++folder) {
        folders.emplace_back(*folder);
    }
    for (unsigned size = std::bit_ceil(static_cast<unsigned>(pixels)); size <= largestInstalledIcon; size *= 2) {
        const std::string square = std::to_string(size) + "x" + std::to_string(size);
        const std::string file = "icons/hicolor/" + square + "/apps/" + applicationId + ".png";
        for (const std::filesystem::path& folder : folders) {
            if (std::error_code unreadable; exists(folder / file, unreadable)) {
                return folder / file;
            }
        }
    }
    return {};
}

} // namespace

GtkWidget* picture(const std::filesystem::path& path, double width, double height) {
    return loaded(path, width, height);
}

GtkWidget* picture(const std::filesystem::path& path, double height) {
    return loaded(path, asWideAsNeeded, height);
}

GtkWidget* applicationIcon(int size) {
    const std::filesystem::path file = installedIcon(size * scaleOfScreens());
    if (file.empty()) {
        return nullptr;
    }
    GtkWidget* image = picture(file, size);
    gtk_image_set_pixel_size(GTK_IMAGE(image), size);
    // The user's icon theme may have another one, but all of a theme takes longer to read than a window to be
    // shown.
    afterFirstFrame(image, [](GtkWidget* shown, GdkFrameClock*, gpointer) -> gboolean {
        if (gtk_icon_theme_has_icon(gtk_icon_theme_get_default(), applicationId)) { // not if its cache is stale
            gtk_image_set_from_icon_name(GTK_IMAGE(shown), applicationId, GTK_ICON_SIZE_DIALOG);
        }
        return G_SOURCE_REMOVE;
    });
    return image;
}

} // namespace platform::linux
