#include "platform/linux/window/helper/AlertPicture.hpp"

#include "platform/linux/window/helper/Pictures.hpp"

#include <numbers>

namespace platform::linux {
namespace {

constexpr int pictureHeight = 64;
constexpr int signSize = 26;
constexpr int overhang = 6; ///< How far the sign stands out of the picture.

/// What a kind of alert is called and drawn as.
struct Sign {
    const char* name;
    const char* colour;
    const char* letterColour;
    bool isTriangle;
    bool isUpsideDown; ///< Whether the “i” in it stands on its head, as a “!”.
};

Sign signOf(NSAlert::Style style) {
    switch (style) {
    case NSAlert::Style::Warning:
        return {"Warning", "#f5c211", "#241f31", true, true};
    case NSAlert::Style::Critical:
        return {"Error", "#e01b24", "#ffffff", false, true};
    case NSAlert::Style::Informational:
        break;
    }
    return {"Information", "#1c71d8", "#ffffff", false, false};
}

void setColour(cairo_t* drawing, const char* colour) {
    GdkRGBA rgba{};
    gdk_rgba_parse(&rgba, colour);
    gdk_cairo_set_source_rgba(drawing, &rgba);
}

void trace(cairo_t* drawing, bool isTriangle) {
    constexpr double edge = 3;
    constexpr double middle = signSize / 2.0;
    if (isTriangle) {
        cairo_move_to(drawing, middle, edge);
        cairo_line_to(drawing, signSize - edge, signSize - edge - 1);
        cairo_line_to(drawing, edge, signSize - edge - 1);
        cairo_close_path(drawing);
    } else {
        cairo_arc(drawing, middle, middle, middle - edge, 0, 2 * std::numbers::pi);
    }
}

/// A dot and a stem, drawn: to look for a letter in a font delays the window.
void drawLetter(cairo_t* drawing, const Sign& sign) {
    constexpr double thickness = 3;
    constexpr double middle = signSize / 2.0;
    const double centre = sign.isTriangle ? middle + 2.5 : middle; // the triangle's own lies lower
    const double downwards = sign.isUpsideDown ? -1 : 1;
    const auto at = [&](double y) { return centre + downwards * y; };
    cairo_set_line_cap(drawing, CAIRO_LINE_CAP_ROUND);
    cairo_set_line_width(drawing, thickness);
    cairo_move_to(drawing, middle, at(-4.5));
    cairo_close_path(drawing);
    cairo_move_to(drawing, middle, at(0));
    cairo_line_to(drawing, middle, at(4.5));
    cairo_stroke(drawing);
}

void draw(cairo_t* drawing, const Sign& sign) {
    constexpr double outline = 3;
    trace(drawing, sign.isTriangle);
    setColour(drawing, sign.colour);
    cairo_set_line_join(drawing, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(drawing, outline);
    cairo_stroke_preserve(drawing);
    cairo_fill(drawing);

    setColour(drawing, sign.letterColour);
    drawLetter(drawing, sign);
}

GtkWidget* signFor(NSAlert::Style style) {
    const Sign sign = signOf(style);
    GtkWidget* area = gtk_drawing_area_new();
    gtk_widget_set_size_request(area, signSize, signSize);
    gtk_widget_set_halign(area, GTK_ALIGN_END);
    gtk_widget_set_valign(area, GTK_ALIGN_END);
    connect(area, "draw", [sign](cairo_t* drawing) -> gboolean {
        draw(drawing, sign);
        return GDK_EVENT_STOP;
    });
    setAccessibleName(area, sign.name);
    atk_object_set_role(gtk_widget_get_accessible(area), ATK_ROLE_IMAGE);
    return area;
}

} // namespace

GtkWidget* alertPicture(const AlertRequest& request) {
    GtkWidget* icon = request.alert.icon ? nullptr : applicationIcon(pictureHeight);
    GtkWidget* image = icon ? icon : picture(request.picture, pictureHeight);
    gtk_widget_set_margin_end(image, overhang);
    gtk_widget_set_margin_bottom(image, overhang);
    GtkWidget* whole = gtk_overlay_new();
    gtk_container_add(GTK_CONTAINER(whole), image);
    gtk_overlay_add_overlay(GTK_OVERLAY(whole), signFor(request.alert.alertStyle));
    gtk_widget_set_valign(whole, GTK_ALIGN_START);
    return whole;
}

} // namespace platform::linux
