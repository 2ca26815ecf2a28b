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
    const char* letter;
    const char* colour;
    const char* letterColour;
    bool isTriangle;
};

Sign signOf(NSAlert::Style style) {
    switch (style) {
    case NSAlert::Style::Warning:
        return {"Warning", "!", "#f5c211", "#241f31", true};
    case NSAlert::Style::Critical:
        return {"Error", "!", "#e01b24", "#ffffff", false};
    case NSAlert::Style::Informational:
        break;
    }
    return {"Information", "i", "#1c71d8", "#ffffff", false};
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

void draw(cairo_t* drawing, const Sign& sign) {
    constexpr double outline = 3;
    trace(drawing, sign.isTriangle);
    setColour(drawing, sign.colour);
    cairo_set_line_join(drawing, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_width(drawing, outline);
    cairo_stroke_preserve(drawing);
    cairo_fill(drawing);

    constexpr double letterHeight = 16;
    constexpr double baseline = 19;
    cairo_text_extents_t extents{};
    cairo_select_font_face(drawing, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
    cairo_set_font_size(drawing, letterHeight);
    cairo_text_extents(drawing, sign.letter, &extents);
    cairo_move_to(drawing, (signSize - extents.width) / 2 - extents.x_bearing,
                  baseline + (sign.isTriangle ? 1 : 0));
    setColour(drawing, sign.letterColour);
    cairo_show_text(drawing, sign.letter);
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
