#include "platform/linux/WakeWatcher.hpp"

#include <glib-unix.h>
#include <unistd.h>

#include <array>
#include <string>
#include <string_view>
#include <utility>

namespace platform::linux {
namespace {

/// What a client says first: that it is the user whom the kernel tells the bus of.
std::string introduction() {
    std::string words{"\0AUTH EXTERNAL ", 15};
    for (const char digit : std::to_string(geteuid())) {
        (words += '3') += digit; // which is the digit's code in hexadecimal
    }
    return words + "\r\n";
}

} // namespace

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

/// Introduces itself to the bus, and speaks on as soon as that agrees. GLib would wait for a silent bus, or start
/// threads that take more memory than this is worth.
void WakeWatcher::connect() {
    const TextHandle address{g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, nullptr, nullptr)};
    _door.reset(address ? g_dbus_address_get_stream_sync(address.get(), nullptr, nullptr, nullptr) : nullptr);
    if (!_door) {
        connectLater();
        return;
    }
    const std::string words = introduction();
    GSocket* const socket = g_socket_connection_get_socket(G_SOCKET_CONNECTION(_door.get()));
    g_socket_set_blocking(socket, FALSE);
    g_socket_send(socket, words.data(), words.size(), nullptr, nullptr);
    const auto answered = [](gint, GIOCondition, gpointer self) -> gboolean {
        static_cast<WakeWatcher*>(self)->_answer = 0;
        static_cast<WakeWatcher*>(self)->enter();
        return G_SOURCE_REMOVE;
    };
    _answer = g_unix_fd_add(g_socket_get_fd(socket), static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR),
                            answered, this);
}

void WakeWatcher::enter() {
    constexpr std::string_view agreement = "OK ";
    constexpr std::string_view end = "\r\n";
    constexpr std::string_view lastWord = "BEGIN\r\n";
    const ObjectHandle<GIOStream> door = std::move(_door);
    GSocket* const socket = g_socket_connection_get_socket(G_SOCKET_CONNECTION(door.get()));
    std::array<char, 256> text{};
    const gssize size = g_socket_receive(socket, text.data(), text.size(), nullptr, nullptr);
    const std::string_view answer{text.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
    GDBusConnection* systemBus = nullptr;
    if (answer.starts_with(agreement) && answer.ends_with(end)) {
        g_socket_send(socket, lastWord.data(), lastWord.size(), nullptr, nullptr);
        g_socket_set_blocking(socket, TRUE);
        systemBus = g_dbus_connection_new_sync(door.get(), nullptr, G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION,
                                               nullptr, nullptr, nullptr);
    }
    if (systemBus) {
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

} // namespace platform::linux
