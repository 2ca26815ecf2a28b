#pragma once

// Hears which calls go over the private session bus.

#include "platform/linux/glib/Handles.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <mutex>
#include <string>
#include <utility>
#include <vector>

class BusMonitor {
public:
    BusMonitor()
        : _filter{g_dbus_connection_add_filter(_bus.get(), filter, this, nullptr)} {
        call(_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Monitoring",
             "BecomeMonitor", g_variant_new("(asu)", nullptr, 0U));
    }
    ~BusMonitor() {
        g_dbus_connection_close_sync(_bus.get(), nullptr, nullptr);
        g_dbus_connection_remove_filter(_bus.get(), _filter);
    }
    BusMonitor(const BusMonitor&) = delete;
    BusMonitor& operator=(const BusMonitor&) = delete;

    /// "DESTINATION MEMBER" for each call that the owner of the name has sent so far.
    std::vector<std::string> callsBy(const std::string& uniqueName) {
        const std::scoped_lock lock{_mutex};
        std::vector<std::string> sent;
        for (const auto& [sender, message] : _messages) {
            if (sender == uniqueName) {
                sent.push_back(message);
            }
        }
        return sent;
    }

private:
    struct Message {
        std::string sender;
        std::string text;
    };

    /// Runs in GLib's thread. A monitor must not answer.
    static GDBusMessage* filter(GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer self) {
        const auto kind = g_dbus_message_get_message_type(message);
        if (isIncoming && kind == G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
            static_cast<BusMonitor*>(self)->add(g_dbus_message_get_sender(message),
                                                std::string{g_dbus_message_get_destination(message)} + " " +
                                                    g_dbus_message_get_member(message));
        }
        const bool isAnswer = kind == G_DBUS_MESSAGE_TYPE_METHOD_RETURN;
        if (!isIncoming || isAnswer) {
            return message;
        }
        g_object_unref(message);
        return nullptr;
    }

    void add(std::string sender, std::string text) {
        const std::scoped_lock lock{_mutex};
        _messages.push_back({std::move(sender), std::move(text)});
    }

    platform::linux::ObjectHandle<GDBusConnection> _bus = connectToSession();
    std::mutex _mutex;
    std::vector<Message> _messages;
    const unsigned _filter; ///< Heard by another thread as soon as it is there.
};
