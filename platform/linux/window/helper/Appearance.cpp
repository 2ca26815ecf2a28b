#include "platform/linux/window/helper/Appearance.hpp"

#include "platform/linux/window/helper/Backend.hpp"
#include "platform/linux/window/helper/Gtk.hpp"

#include <memory>
#include <string_view>

namespace platform::linux {
namespace {

/// Round corners and shadows need a compositor; without one, a thin line sets the window off.
constexpr const char* appearance = R"(
    window.csd:not(.solid-csd), window.csd:not(.solid-csd) decoration { border-radius: 12px; }
    window.solid-csd decoration { padding: 1px; border: none; box-shadow: none; background-color: @borders; }
    window .alert { margin: 24px; }
    window .alert checkbutton { margin-left: -4px; }
    window .alert button { min-width: 76px; }
    window .panel { margin: 24px 14px 14px 14px; }
)";

/// Whether the user asked the desktop for dark windows in the way that GTK 3 does not hear by itself: GNOME's,
/// which is that of all desktops on Wayland, where GTK takes its other settings from the same place.
bool prefersDark() {
    const gchar* desktop = g_getenv("XDG_CURRENT_DESKTOP");
    const bool isGnome = desktop && std::string_view{desktop}.find("GNOME") != std::string_view::npos;
    if (!isGnome && isOnX11()) {
        return false;
    }
    constexpr const char* schemaId = "org.gnome.desktop.interface";
    const std::unique_ptr<GSettingsSchema, decltype(&g_settings_schema_unref)> schema{
        g_settings_schema_source_lookup(g_settings_schema_source_get_default(), schemaId, TRUE),
        g_settings_schema_unref};
    if (!schema || !g_settings_schema_has_key(schema.get(), "color-scheme")) {
        return false;
    }
    const std::unique_ptr<GSettings, decltype(&g_object_unref)> settings{g_settings_new(schemaId), g_object_unref};
    const std::unique_ptr<gchar, decltype(&g_free)> scheme{g_settings_get_string(settings.get(), "color-scheme"),
                                                           g_free};
    return std::string_view{scheme.get()} == "prefer-dark";
}

} // namespace

void setUpAppearance() {
    if (prefersDark()) {
        g_object_set(gtk_settings_get_default(), "gtk-application-prefer-dark-theme", TRUE, nullptr);
    }
    const std::unique_ptr<GtkCssProvider, decltype(&g_object_unref)> provider{gtk_css_provider_new(),
                                                                              g_object_unref};
    gtk_css_provider_load_from_data(provider.get(), appearance, -1, nullptr);
    gtk_style_context_add_provider_for_screen(gdk_screen_get_default(), GTK_STYLE_PROVIDER(provider.get()),
                                              GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
}

} // namespace platform::linux
