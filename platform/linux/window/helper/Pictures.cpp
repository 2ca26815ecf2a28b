#include "platform/linux/window/helper/Pictures.hpp"

#include <bit>
#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

constexpr unsigned largestInstalledIcon = 512;

/// The density of what is not on a screen yet: of any screen that is on.
int scaleOfScreens() {
    GdkMonitor* any = gdk_display_get_monitor(gdk_display_get_default(), 0);
    return any ? gdk_monitor_get_scale_factor(any) : 1;
}

using Surface = std::unique_ptr<cairo_surface_t, decltype(&cairo_surface_destroy)>;

/// The surface in that many pixels.
Surface resized(Surface surface, int width, int height) {
    const int columns = cairo_image_surface_get_width(surface.get());
    const int rows = cairo_image_surface_get_height(surface.get());
    if (columns == width && rows == height) {
        return surface;
    }
    Surface result{cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height), cairo_surface_destroy};
    const std::unique_ptr<cairo_t, decltype(&cairo_destroy)> drawing{cairo_create(result.get()), cairo_destroy};
    cairo_scale(drawing.get(), static_cast<double>(width) / columns, static_cast<double>(height) / rows);
    cairo_set_source_surface(drawing.get(), surface.get(), 0, 0);
    cairo_pattern_set_extend(cairo_get_source(drawing.get()), CAIRO_EXTEND_PAD);
    cairo_paint(drawing.get());
    return result;
}

/// By Cairo itself: what reads pictures of all kinds looks for them in modules first.
GtkWidget* loaded(const std::filesystem::path& path, std::optional<double> width, double height) {
    GtkWidget* image = gtk_image_new();
    Surface surface{cairo_image_surface_create_from_png(path.c_str()), cairo_surface_destroy};
    if (cairo_surface_status(surface.get()) == CAIRO_STATUS_SUCCESS) {
        const int scale = scaleOfScreens();
        const double proportion = static_cast<double>(cairo_image_surface_get_width(surface.get())) /
                                  cairo_image_surface_get_height(surface.get());
        const auto pixels = [&](double points) { return static_cast<int>(std::lround(points * scale)); };
        surface = resized(std::move(surface), pixels(width.value_or(height * proportion)), pixels(height));
        cairo_surface_set_device_scale(surface.get(), scale, scale);
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

GtkWidget* picture(const std::filesystem::path& path, double height) { return loaded(path, std::nullopt, height); }

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
