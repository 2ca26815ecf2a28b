#pragma once

// Stands in for the watcher of a panel: notes which items register, and says whether a panel shows them.

#include "platform/linux/glib/ExportedInterface.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <optional>
#include <string>
#include <vector>

namespace platform::linux {

class TrayWatcher {
public:
    /// A watcher that is not ready has its name on the bus and no object yet.
    explicit TrayWatcher(bool isReady = true) {
        if (isReady) {
            getReady();
        }
        takeName(_bus.get(), "org.kde.StatusNotifierWatcher");
    }

    ~TrayWatcher() { g_dbus_connection_close_sync(_bus.get(), nullptr, nullptr); }
    TrayWatcher(const TrayWatcher&) = delete;
    TrayWatcher& operator=(const TrayWatcher&) = delete;

    void getReady() {
        _interface.emplace(
            _bus.get(), "/StatusNotifierWatcher",
            R"xml(<node><interface name="org.kde.StatusNotifierWatcher">
              <method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
              <property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
              <signal name="StatusNotifierHostRegistered"/>
              <signal name="StatusNotifierHostUnregistered"/>
            </interface></node>)xml",
            [this](std::string_view, GVariant* arguments) {
                const char* item = "";
                g_variant_get(arguments, "(&s)", &item);
                registered.emplace_back(item);
                return owned(g_variant_new("()"));
            },
            [this](std::string_view) {
                ++questions;
                return owned(g_variant_new_boolean(_hasPanel));
            });
    }

    /// A panel registers with the watcher, or leaves it.
    void setPanel(bool hasPanel) {
        _hasPanel = hasPanel;
        _interface->emit(hasPanel ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered");
    }

    GDBusConnection* bus() const { return _bus.get(); }

    std::vector<std::string> registered;
    int questions = 0; ///< For a panel.

private:
    ObjectHandle<GDBusConnection> _bus = connectToSession();
    gboolean _hasPanel = TRUE;
    std::optional<ExportedInterface> _interface;
};

} // namespace platform::linux
