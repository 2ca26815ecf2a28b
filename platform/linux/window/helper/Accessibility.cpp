#include "platform/linux/window/helper/Accessibility.hpp"

#include "platform/linux/window/helper/Backend.hpp"
#include "platform/linux/window/helper/Gtk.hpp"
#include "platform/linux/window/helper/VariableForNow.hpp"

#include <atk-bridge.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

namespace platform::linux {
namespace {

constexpr const char* busAddress = "AT_SPI_BUS_ADDRESS";

/// Whether the bridge would look for the address on this display: it has none yet, and in a Wayland session it asks
/// the session bus.
bool isAskedFor() {
    return isOnX11() && !g_getenv(busAddress) && !g_getenv("AT_SPI_DISPLAY") && !g_getenv("WAYLAND_DISPLAY");
}

/// What the session has written on the root window; empty if there is nothing.
std::string addressOnDisplay() {
    constexpr gulong longest = 4096;
    gint length = 0;
    guchar* bytes = nullptr;
    gdk_property_get(gdk_screen_get_root_window(gdk_screen_get_default()),
                     gdk_atom_intern_static_string("AT_SPI_BUS"), gdk_atom_intern_static_string("STRING"), 0,
                     longest, FALSE, nullptr, nullptr, &length, &bytes);
    const std::unique_ptr<guchar, decltype(&g_free)> owner{bytes, g_free};
    return bytes ? std::string{reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(length)}
                 : std::string{};
}

} // namespace

void meetAssistiveTechnology() {
    std::optional<VariableForNow> known;
    if (const std::string address = isAskedFor() ? addressOnDisplay() : std::string{}; !address.empty()) {
        known.emplace(busAddress, address.c_str());
    }
    atk_bridge_adaptor_init(nullptr, nullptr);
}

} // namespace platform::linux
