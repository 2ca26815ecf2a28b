#include "platform/linux/glib/Delivery.hpp"

#include "platform/linux/glib/Handles.hpp"

namespace platform::linux {

void awaitDelivery(GDBusConnection* bus) {
    constexpr int milliseconds = 1000;
    // The bus answers in the order in which it was sent things.
    const VariantHandle ignored{g_dbus_connection_call_sync(
        bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Peer", "Ping", nullptr, nullptr,
        G_DBUS_CALL_FLAGS_NONE, milliseconds, nullptr, nullptr)};
}

} // namespace platform::linux
