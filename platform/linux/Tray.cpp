#include "platform/linux/Tray.hpp"

#include "platform/Text.hpp"
#include "platform/linux/Resources.hpp"

#include <utility>

namespace platform::freedesktop {
namespace {

constexpr const char* watcher = "org.kde.StatusNotifierWatcher";

std::string processName(unsigned identifier) {
    std::string name = contentsOfFile("/proc/" + std::to_string(identifier) + "/comm").value_or("");
    return name.substr(0, name.find('\n'));
}

} // namespace

Tray::Tray(GDBusConnection* bus, std::function<void(std::string_view processName)> appeared,
           std::function<void()> vanished, std::function<void(std::string_view)> logError)
    : _bus{G_DBUS_CONNECTION(g_object_ref(bus))}
    , _appeared{std::move(appeared)}
    , _vanished{std::move(vanished)}
    , _logError{std::move(logError)} {
    const auto nameAppeared = [](GDBusConnection*, const char*, const char* owner, gpointer self) {
        static_cast<Tray*>(self)->askWho(owner);
    };
    const auto nameVanished = [](GDBusConnection*, const char*, gpointer self) {
        static_cast<Tray*>(self)->_panel.reset();
        static_cast<Tray*>(self)->_vanished();
    };
    _watch = g_bus_watch_name_on_connection(bus, watcher, G_BUS_NAME_WATCHER_FLAGS_NONE, nameAppeared, nameVanished,
                                            this, nullptr);
}

Tray::~Tray() { g_bus_unwatch_name(_watch); }

void Tray::askWho(const char* owner) {
    _panel.emplace();
    const auto answered = [](GObject* bus, GAsyncResult* result, gpointer data) {
        ErrorSlot error;
        const VariantHandle answer{g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error)};
        if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
            return;
        }
        Tray* const self = static_cast<Tray*>(data);
        unsigned process = 0;
        if (answer) {
            g_variant_get(answer.get(), "(u)", &process);
        }
        self->_appeared(processName(process));
        self->registerItem();
    };
    g_dbus_connection_call(_bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                           "GetConnectionUnixProcessID", g_variant_new("(s)", owner), G_VARIANT_TYPE("(u)"),
                           G_DBUS_CALL_FLAGS_NONE, -1, _panel->get(), answered, this);
}

/// Registers under the bus's own name for us: of the ways there are, the one that every panel takes.
void Tray::registerItem() {
    const auto answered = [](GObject* bus, GAsyncResult* result, gpointer data) {
        ErrorSlot error;
        const VariantHandle answer{g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error)};
        if (error && !error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
            static_cast<Tray*>(data)->_logError("The panel refused the status item: " +
                                                std::string{error.message()});
        }
    };
    g_dbus_connection_call(_bus.get(), watcher, "/StatusNotifierWatcher", watcher, "RegisterStatusNotifierItem",
                           g_variant_new("(s)", g_dbus_connection_get_unique_name(_bus.get())), nullptr,
                           G_DBUS_CALL_FLAGS_NONE, -1, _panel->get(), answered, this);
}

} // namespace platform::freedesktop
