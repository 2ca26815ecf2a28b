#include "platform/linux/window/helper/Pictures.hpp"

#include <cmath>
#include <memory>

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

} // namespace

GtkWidget* picture(const std::filesystem::path& path, double width, double height) {
    return loaded(path, width, height);
}

GtkWidget* picture(const std::filesystem::path& path, double height) {
    return loaded(path, asWideAsNeeded, height);
}

GtkWidget* applicationIcon(int size) {
    if (!gtk_icon_theme_has_icon(gtk_icon_theme_get_default(), applicationId)) {
        return nullptr;
    }
    GtkWidget* image = gtk_image_new_from_icon_name(applicationId, GTK_ICON_SIZE_DIALOG);
    gtk_image_set_pixel_size(GTK_IMAGE(image), size);
    return image;
}

} // namespace platform::linux
