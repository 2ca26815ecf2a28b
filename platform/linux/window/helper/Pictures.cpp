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

GtkWidget* loaded(const std::filesystem::path& path, double width, double height) {
    GtkWidget* image = gtk_image_new();
    const int scale = gtk_widget_get_scale_factor(image);
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

/// The file of the application's icon of that many pixels, or a few more, that is installed for all icon themes;
/// empty if there is none.
std::filesystem::path installedIcon(int pixels) {
    const std::string size = std::to_string(std::bit_ceil(static_cast<unsigned>(pixels)));
    const std::string file = "icons/hicolor/" + size + "x" + size + "/apps/" + applicationId + ".png";
    std::vector<std::filesystem::path> folders{g_get_user_data_dir()};
    for (const gchar* const* folder = g_get_system_data_dirs(); *folder; ++folder) {
        folders.emplace_back(*folder);
    }
    for (const std::filesystem::path& folder : folders) {
        if (std::error_code unreadable; exists(folder / file, unreadable)) {
            return folder / file;
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
    GdkMonitor* any = gdk_display_get_monitor(gdk_display_get_default(), 0); // as GTK does
    const std::filesystem::path file = installedIcon(size * gdk_monitor_get_scale_factor(any));
    if (file.empty()) {
        return nullptr;
    }
    GtkWidget* image = picture(file, size);
    gtk_image_set_pixel_size(GTK_IMAGE(image), size);
    // The user's icon theme may have another one, but all of a theme takes longer to read than a window to be
    // shown.
    afterFirstFrame(image, [](GtkWidget* shown, GdkFrameClock*, gpointer) -> gboolean {
        gtk_image_set_from_icon_name(GTK_IMAGE(shown), applicationId, GTK_ICON_SIZE_DIALOG);
        return G_SOURCE_REMOVE;
    });
    return image;
}

} // namespace platform::linux
