// A program with a status item of the least that panels ask for, which wakes up once a second and does nothing.

#include <gio/gio.h>
#include <unistd.h>

#include <cstdlib>
#include <string_view>

namespace {

constexpr const char* path = "/StatusNotifierItem";

constexpr const char* description = R"xml(<node><interface name="org.kde.StatusNotifierItem">
  <property name="Category" type="s" access="read"/>
  <property name="Id" type="s" access="read"/>
  <property name="Title" type="s" access="read"/>
  <property name="Status" type="s" access="read"/>
  <property name="IconName" type="s" access="read"/>
  <property name="ItemIsMenu" type="b" access="read"/>
</interface></node>)xml";

GVariant* property(GDBusConnection*, const char*, const char*, const char*, const char* asked, GError**, gpointer) {
    const std::string_view key = asked;
    if (key == "ItemIsMenu") {
        return g_variant_new_boolean(FALSE);
    }
    return g_variant_new_string(key == "Category"   ? "ApplicationStatus"
                                : key == "Status"   ? "Active"
                                : key == "IconName" ? "appointment-soon"
                                                    : "bare-item");
}

void exportItem(GDBusConnection* bus) {
    static const GDBusInterfaceVTable functions{nullptr, property, nullptr, {}};
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(description, nullptr);
    g_dbus_connection_register_object(bus, path, node->interfaces[0], &functions, nullptr, nullptr, nullptr);
    g_dbus_node_info_unref(node);
}

void registerItem(GDBusConnection* bus, const char* name, gpointer) {
    g_dbus_connection_call(bus, "org.kde.StatusNotifierWatcher", "/StatusNotifierWatcher",
                           "org.kde.StatusNotifierWatcher", "RegisterStatusNotifierItem",
                           g_variant_new("(s)", name), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr,
                           nullptr);
}

} // namespace

int main() {
    GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, nullptr);
    if (!bus) {
        return EXIT_FAILURE;
    }
    char* const name = g_strdup_printf("org.kde.StatusNotifierItem-%d-1", getpid());
    exportItem(bus);
    g_bus_own_name_on_connection(bus, name, G_BUS_NAME_OWNER_FLAGS_NONE, registerItem, nullptr, nullptr, nullptr);
    g_timeout_add(1000, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
