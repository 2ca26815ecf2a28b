#pragma once

// Stands in for the watcher of a panel: notes which items register, and says whether a panel shows them.

#include "platform/linux/glib/ExportedInterface.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <string>
#include <vector>

namespace platform::linux {

class TrayWatcher {
public:
    TrayWatcher()
        : _interface{_bus.get(), "/StatusNotifierWatcher",
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
                     [this](std::string_view) { return owned(g_variant_new_boolean(_hasHost)); }} {
        takeName(_bus.get(), "org.kde.StatusNotifierWatcher");
    }

    void setHost(bool hasHost) {
        _hasHost = hasHost;
        _interface.emit(hasHost ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered");
    }

    std::vector<std::string> registered;

private:
    ObjectHandle<GDBusConnection> _bus = connectToSession();
    gboolean _hasHost = TRUE;
    ExportedInterface _interface;
};

} // namespace platform::linux
