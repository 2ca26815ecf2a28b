#include "platform/linux/window/helper/Backend.hpp"

#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/window/helper/Gtk.hpp"

#ifdef GDK_WINDOWING_X11
#include <gdk/gdkx.h>
#endif

#include <variant>

namespace platform::linux {
namespace {

bool isSet(const char* variable) {
    const char* value = g_getenv(variable);
    return value && *value;
}

bool isGnome() {
    const char* desktops = g_getenv("XDG_CURRENT_DESKTOP");
    const TextsHandle names{g_strsplit(desktops ? desktops : "", ":", -1)};
    return g_strv_contains(names.get(), "GNOME") != FALSE;
}

bool mustBeSeen(const Request& request) {
    const auto* panel = std::get_if<PanelRequest>(&request);
    return std::holds_alternative<AlertRequest>(request) || (panel && panel->isModal);
}

} // namespace

bool isX11Better() { return isGnome() && isSet("WAYLAND_DISPLAY") && isSet("DISPLAY"); }

void preferX11For(const Request& request) {
    if (mustBeSeen(request)) {
        gdk_set_allowed_backends("x11,*"); // or any other, should X11 fail
    }
}

bool isOnX11() {
#ifdef GDK_WINDOWING_X11
    return GDK_IS_X11_DISPLAY(gdk_display_get_default());
#else
    return false;
#endif
}

} // namespace platform::linux
