#include "platform/linux/WakeWatcher.hpp"

#include <utility>

namespace platform::freedesktop {

WakeWatcher::WakeWatcher(std::function<void()> didWake)
    : _didWake{std::move(didWake)} {
    connect();
}

WakeWatcher::~WakeWatcher() {
    letGo();
    if (_retry != 0) {
        g_source_remove(_retry);
    }
}

/// Waits for the bus: GLib's other way of connecting starts threads that stay for good.
void WakeWatcher::connect() {
    if (GDBusConnection* systemBus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)) {
        listen(systemBus);
    } else {
        connectLater();
    }
}

void WakeWatcher::listen(GDBusConnection* systemBus) {
    _systemBus.reset(systemBus);
    g_dbus_connection_set_exit_on_close(systemBus, FALSE);
    const auto closed = +[](GDBusConnection*, gboolean, GError*, WakeWatcher* self) {
        self->letGo();
        self->connectLater();
    };
    _closedHandler = g_signal_connect(systemBus, "closed", G_CALLBACK(closed), this);
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
        systemBus, "org.freedesktop.login1", "org.freedesktop.login1.Manager", "PrepareForSleep",
        "/org/freedesktop/login1", nullptr, G_DBUS_SIGNAL_FLAGS_NONE, prepareForSleep, this, nullptr);
}

void WakeWatcher::connectLater() {
    constexpr unsigned seconds = 60;
    const auto retry = [](gpointer self) -> gboolean {
        static_cast<WakeWatcher*>(self)->_retry = 0;
        static_cast<WakeWatcher*>(self)->connect();
        return G_SOURCE_REMOVE;
    };
    _retry = g_timeout_add_seconds(seconds, retry, this);
}

void WakeWatcher::letGo() {
    if (_systemBus) {
        g_dbus_connection_signal_unsubscribe(_systemBus.get(), _subscription);
        g_signal_handler_disconnect(_systemBus.get(), _closedHandler);
        _systemBus.reset();
    }
}

} // namespace platform::freedesktop
