#pragma once

// The signals of one interface that one connection sends, as text.

#include "platform/linux/glib/Handles.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <string>
#include <utility>
#include <vector>

namespace platform::linux {

/// The value in GLib's text form; "nothing" for null.
inline std::string printed(const VariantHandle& value) {
    return value ? TextHandle{g_variant_print(value.get(), FALSE)}.get() : "nothing";
}

class BusSignals {
public:
    BusSignals(GDBusConnection* bus, GDBusConnection* sender, const char* interface)
        : _bus{bus}
        , _sender{g_dbus_connection_get_unique_name(sender)} {
        const auto received = [](GDBusConnection*, const char*, const char*, const char*, const char* name,
                                 GVariant* arguments, gpointer self) {
            static_cast<BusSignals*>(self)->_seen.push_back(std::string{name} + printed(owned(arguments)));
        };
        _subscription =
            g_dbus_connection_signal_subscribe(bus, _sender.c_str(), interface, nullptr, nullptr, nullptr,
                                               G_DBUS_SIGNAL_FLAGS_NONE, received, this, nullptr);
        take(); // what was sent before
    }
    ~BusSignals() { g_dbus_connection_signal_unsubscribe(_bus, _subscription); }
    BusSignals(const BusSignals&) = delete;
    BusSignals& operator=(const BusSignals&) = delete;

    /// Those since the last time, or since this object was made.
    std::vector<std::string> take() {
        call(_bus, _sender, "/", "org.freedesktop.DBus.Peer", "Ping", nullptr); // whose answer comes behind them
        return std::exchange(_seen, {});
    }

private:
    GDBusConnection* _bus;
    std::string _sender;
    unsigned _subscription;
    std::vector<std::string> _seen;
};

} // namespace platform::linux
