#pragma once

// Stands in for the desktop's notification area: remembers what it was told.

#include "platform/linux/glib/ExportedInterface.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class NotificationDaemon {
public:
    struct Message {
        std::string program;
        std::string icon;
        std::string summary;
        std::string body;
        std::vector<std::pair<std::string, std::string>> actions;
        std::string desktopEntry;
        int expiry;
    };

    NotificationDaemon() { takeName(_bus.get(), name); }
    ~NotificationDaemon() { g_dbus_connection_close_sync(_bus.get(), nullptr, nullptr); }
    NotificationDaemon(const NotificationDaemon&) = delete;
    NotificationDaemon& operator=(const NotificationDaemon&) = delete;

    /// The user chooses an action of the message of that number.
    void choose(std::uint32_t number, const char* key) {
        _interface.emit("ActionInvoked", g_variant_new("(us)", number, key));
    }

    /// Sends the signal with arguments of one's own.
    void babble(GVariant* arguments) {
        g_dbus_connection_emit_signal(_bus.get(), nullptr, object, name, "ActionInvoked", arguments, nullptr);
    }

    GDBusConnection* bus() const { return _bus.get(); }

    std::map<std::uint32_t, Message> onScreen;
    std::vector<std::uint32_t> closings;
    int shows = 0;

private:
    using VariantHandle = platform::linux::VariantHandle;

    static constexpr const char* name = "org.freedesktop.Notifications";
    static constexpr const char* object = "/org/freedesktop/Notifications";
    static constexpr const char* description = R"(<node><interface name="org.freedesktop.Notifications">
      <method name="Notify">
        <arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
        <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
        <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/>
      </method>
      <method name="CloseNotification"><arg type="u" direction="in"/></method>
      <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
    </interface></node>)";

    VariantHandle answer(std::string_view method, GVariant* arguments) {
        using namespace platform::linux;
        if (method == "CloseNotification") {
            std::uint32_t number = 0;
            g_variant_get(arguments, "(u)", &number);
            closings.push_back(number);
            onScreen.erase(number);
            return owned(g_variant_new("()"));
        }
        const char* program = nullptr;
        std::uint32_t number = 0;
        const char* icon = nullptr;
        const char* summary = nullptr;
        const char* body = nullptr;
        GVariant* actions = nullptr;
        GVariant* hints = nullptr;
        int expiry = 0;
        g_variant_get(arguments, "(&su&s&s&s@as@a{sv}i)", &program, &number, &icon, &summary, &body, &actions,
                      &hints, &expiry);
        const VariantHandle ownedActions{actions};
        const VariantHandle ownedHints{hints};
        Message message{program, icon, summary, body, {}, {}, expiry};
        for (gsize index = 0; index + 1 < g_variant_n_children(actions); index += 2) {
            const char* key = nullptr;
            const char* label = nullptr;
            g_variant_get_child(actions, index, "&s", &key);
            g_variant_get_child(actions, index + 1, "&s", &label);
            message.actions.emplace_back(key, label);
        }
        if (const char* entry = nullptr; g_variant_lookup(hints, "desktop-entry", "&s", &entry)) {
            message.desktopEntry = entry;
        }
        if (number == 0) {
            number = ++_lastNumber;
        }
        onScreen.insert_or_assign(number, std::move(message));
        ++shows;
        return owned(g_variant_new("(u)", number));
    }

    platform::linux::ObjectHandle<GDBusConnection> _bus{connectToSession()};
    platform::linux::ExportedInterface _interface{
        _bus.get(), object, description,
        [this](std::string_view method, GVariant* arguments) { return answer(method, arguments); }, nullptr};
    std::uint32_t _lastNumber = 6;
};
