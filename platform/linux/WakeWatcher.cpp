#include "platform/linux/WakeWatcher.hpp"

#include <utility>

namespace platform::linux {

WakeWatcher::WakeWatcher(std::function<void()> didWake)
    : _didWake{std::move(didWake)} {
    const TextHandle address{g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)};
    if (!address) {
        return;
    }
    const auto connected = [](GObject*, GAsyncResult* result, gpointer self) {
        ErrorSlot error;
        ObjectHandle<GDBusConnection> systemBus{g_dbus_connection_new_for_address_finish(result, error.out())};
        if (systemBus) { // or else `self` may be gone
            static_cast<WakeWatcher*>(self)->listen(std::move(systemBus));
        }
    };
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address.get(), flags, nullptr, _attempt.get(), connected, this);
}

WakeWatcher::~WakeWatcher() {
    if (_systemBus) {
        g_dbus_connection_signal_unsubscribe(_systemBus.get(), _subscription);
    }
}

void WakeWatcher::listen(ObjectHandle<GDBusConnection> systemBus) {
    _systemBus = std::move(systemBus);
    const auto prepareForSleep = [](GDBusConnection*, const char*, const char*, const char*, const char*,
                                    GVariant* parameters, gpointer self) {
        if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(b)"))) {
            return;
        }
        gboolean isGoingToSleep = FALSE;
        g_variant_get(parameters, "(b)", &isGoingToSleep);
        if (!isGoingToSleep) {
            static_cast<WakeWatcher*>(self)->_didWake();
        }
    };
    _subscription = g_dbus_connection_signal_subscribe(
        _systemBus.get(), "org.freedesktop.login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
        "/org/freedesktop/login1", nullptr, G_DBUS_SIGNAL_FLAGS_NONE, prepareForSleep, this, nullptr);
}

} // namespace platform::linux
