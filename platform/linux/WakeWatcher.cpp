#include "platform/linux/WakeWatcher.hpp"

#include <utility>

namespace platform::freedesktop {

WakeWatcher::WakeWatcher(std::function<void()> didWake, std::chrono::seconds patience)
    : _didWake{std::move(didWake)}
    , _patience{patience} {
    connect();
}

WakeWatcher::~WakeWatcher() {
    letGo();
    if (_retry != 0) {
        g_source_remove(_retry);
    }
}

void WakeWatcher::connect() {
    const TextHandle address{g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)};
    if (!address) {
        connectLater();
        return;
    }
    const auto connected = [](GObject*, GAsyncResult* result, gpointer self) {
        ErrorSlot error;
        GDBusConnection* const systemBus = g_dbus_connection_new_for_address_finish(result, &error);
        if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
            return;
        }
        if (systemBus) {
            static_cast<WakeWatcher*>(self)->listen(systemBus);
        } else {
            static_cast<WakeWatcher*>(self)->connectLater();
        }
    };
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address.get(), flags, nullptr, _cancelled.get(), connected, this);
}

void WakeWatcher::listen(GDBusConnection* systemBus) {
    _systemBus.reset(systemBus);
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
    const auto retry = [](gpointer self) -> gboolean {
        static_cast<WakeWatcher*>(self)->_retry = 0;
        static_cast<WakeWatcher*>(self)->connect();
        return G_SOURCE_REMOVE;
    };
    _retry = g_timeout_add_seconds(static_cast<unsigned>(_patience.count()), retry, this);
}

void WakeWatcher::letGo() {
    if (_systemBus) {
        g_dbus_connection_signal_unsubscribe(_systemBus.get(), _subscription);
        g_signal_handler_disconnect(_systemBus.get(), _closedHandler);
        _systemBus.reset();
    }
}

} // namespace platform::freedesktop
