#pragma once

// A service on the private buses that answers every call it knows by one value, and counts the calls.

#include "platform/linux/glib/Handles.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <mutex>
#include <string>
#include <utility>

class AnsweringService {
public:
    /// Owns `name` on `bus`. A call of `member`, with arguments printed as `arguments`, at `path` gets what it was
    /// told to `say`, in GLib's text form; every other call is refused. An empty answer is none at all.
    AnsweringService(platform::linux::ObjectHandle<GDBusConnection> bus, const char* name, std::string path,
                     std::string member, std::string arguments)
        : _bus{std::move(bus)}
        , _path{std::move(path)}
        , _member{std::move(member)}
        , _arguments{std::move(arguments)}
        , _filter{g_dbus_connection_add_filter(_bus.get(), filter, this, nullptr)} {
        takeName(_bus.get(), name);
    }
    ~AnsweringService() {
        die();
        g_dbus_connection_remove_filter(_bus.get(), _filter);
    }
    AnsweringService(const AnsweringService&) = delete;
    AnsweringService& operator=(const AnsweringService&) = delete;

    void die() { g_dbus_connection_close_sync(_bus.get(), nullptr, nullptr); }

    GDBusConnection* bus() const { return _bus.get(); }

    /// Answers so from now on.
    void say(std::string answer) {
        const std::scoped_lock lock{_mutex};
        _answer = std::move(answer);
    }

    /// How many calls it knew so far.
    int calls() {
        const std::scoped_lock lock{_mutex};
        return _calls;
    }

private:
    /// Runs in GLib's thread.
    static GDBusMessage* filter(GDBusConnection* bus, GDBusMessage* message, gboolean isIncoming, gpointer data) {
        auto& self = *static_cast<AnsweringService*>(data);
        if (!isIncoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
            return message;
        }
        self.meet(bus, message);
        g_object_unref(message);
        return nullptr;
    }

    void meet(GDBusConnection* bus, GDBusMessage* message) {
        using namespace platform::linux;
        GVariant* const body = g_dbus_message_get_body(message);
        const TextHandle arguments{body ? g_variant_print(body, FALSE) : g_strdup("()")};
        const bool isKnown = _path == g_dbus_message_get_path(message) &&
                             _member == g_dbus_message_get_member(message) && _arguments == arguments.get();
        const std::scoped_lock lock{_mutex};
        _calls += isKnown;
        if (isKnown && _answer.empty()) {
            return;
        }
        const ObjectHandle<GDBusMessage> reply{
            isKnown ? g_dbus_message_new_method_reply(message)
                    : g_dbus_message_new_method_error_literal(message, "org.marvelode.Test.No", "No")};
        if (isKnown) {
            g_dbus_message_set_body(reply.get(), g_variant_new_parsed(_answer.c_str()));
        }
        g_dbus_connection_send_message(bus, reply.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    }

    platform::linux::ObjectHandle<GDBusConnection> _bus;
    const std::string _path;
    const std::string _member;
    const std::string _arguments;
    std::mutex _mutex;
    std::string _answer;
    int _calls = 0;
    const unsigned _filter; ///< Heard by another thread as soon as it is there.
};
