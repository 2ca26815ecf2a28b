#include "platform/linux/WakeWatcher.hpp"

#include <glib-unix.h>

#include <string_view>
#include <utility>

namespace platform::freedesktop {

WakeWatcher::WakeWatcher(std::function<void()> didWake, std::chrono::seconds patience)
    : _didWake{std::move(didWake)}
    , _patience{patience} {
    connect();
}

WakeWatcher::~WakeWatcher() {
    letGo();
    for (const unsigned source : {_retry, _answer}) {
        if (source != 0) {
            g_source_remove(source);
        }
    }
}

/// Sends the bus a first word, and speaks with it in earnest as soon as it answers. GLib would wait for a silent
/// bus, or start threads that take more memory than this is worth.
void WakeWatcher::connect() {
    const TextHandle address{g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)};
    _door.reset(address ? g_dbus_address_get_stream_sync(address.get(), nullptr, nullptr, nullptr) : nullptr);
    if (!_door) {
        connectLater();
        return;
    }
    constexpr std::string_view firstWord{"\0AUTH\r\n", 7};
    GSocket* const socket = g_socket_connection_get_socket(G_SOCKET_CONNECTION(_door.get()));
    g_socket_set_blocking(socket, FALSE);
    g_socket_send(socket, firstWord.data(), firstWord.size(), nullptr, nullptr);
    const auto answered = [](gint, GIOCondition condition, gpointer data) -> gboolean {
        auto& self = *static_cast<WakeWatcher*>(data);
        self._answer = 0;
        self._door.reset();
        if ((condition & G_IO_IN) != 0) {
            self.enter();
        } else {
            self.connectLater();
        }
        return G_SOURCE_REMOVE;
    };
    _answer = g_unix_fd_add(g_socket_get_fd(socket), static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR),
                            answered, this);
}

void WakeWatcher::enter() {
    const TextHandle address{g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)};
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    if (GDBusConnection* const systemBus =
            g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, nullptr, nullptr)) {
        listen(systemBus);
    } else {
        connectLater();
    }
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
