#include "platform/linux/window/helper/Labels.hpp"

#include <memory>
#include <string>

namespace platform::linux {
namespace {

std::string escaped(const std::string& plain) {
    const std::unique_ptr<gchar, decltype(&g_free)> markedUp{
        g_markup_escape_text(plain.c_str(), static_cast<gssize>(plain.size())), g_free};
    return markedUp.get();
}

std::string markupOf(const node::Text& text) {
    std::string markup;
    for (const node::TextRun& run : text.runs) {
        markup += run.link ? "<a href=\"" + escaped(*run.link) + "\">" + escaped(run.string) + "</a>"
                           : escaped(run.string);
    }
    return markup;
}

std::string plain(const node::Text& text) {
    std::string whole;
    for (const node::TextRun& run : text.runs) {
        whole += run.string;
    }
    return whole;
}

void setFont(GtkWidget* label, Font font) {
    PangoAttrList* attributes = pango_attr_list_new();
    if (font == Font::Title2) {
        pango_attr_list_insert(attributes, pango_attr_scale_new(1.3));
        pango_attr_list_insert(attributes, pango_attr_weight_new(PANGO_WEIGHT_BOLD));
    } else if (font == Font::Caption) {
        pango_attr_list_insert(attributes, pango_attr_scale_new(PANGO_SCALE_SMALL));
        gtk_style_context_add_class(gtk_widget_get_style_context(label), GTK_STYLE_CLASS_DIM_LABEL);
    }
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);
}

} // namespace

GtkWidget* label(const node::Text& text, Font font) {
    GtkWidget* label = gtk_label_new(nullptr);
    gtk_label_set_markup(GTK_LABEL(label), markupOf(text).c_str());
    setFont(label, font);
    // GTK colours links when it lays a text out, and lays it out anew with new attributes only
    connect(label, "state-flags-changed", [label](GtkStateFlags) {
        gtk_label_set_attributes(GTK_LABEL(label), gtk_label_get_attributes(GTK_LABEL(label)));
    });
    return label;
}

bool setText(GtkLabel* label, const node::Text& text) {
    if (plain(text) == gtk_label_get_text(label)) {
        return true;
    }
    if (gtk_label_get_mnemonic_widget(label)) {
        return false;
    }
    gtk_label_set_markup(label, markupOf(text).c_str());
    return true;
}

} // namespace platform::linux
