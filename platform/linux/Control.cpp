#include "platform/linux/Control.hpp"

#include "platform/Fatal.hpp"

#include <algorithm>
#include <utility>

namespace platform::freedesktop {
namespace {

constexpr const char* busName = "org.marvelode.Timer";
constexpr const char* objectPath = "/org/marvelode/Timer";
constexpr const char* applicationInterface = "org.freedesktop.Application";

constexpr const char* interfaces = R"(
<node>
  <interface name="org.marvelode.Timer">
    <method name="Restart"/>
    <method name="ToggleMute"/>
    <method name="TogglePopups"/>
    <method name="ShowSettings"/>
    <method name="ShowAbout"/>
    <method name="ShowMenu"/>
    <method name="Quit"/>
    <property name="State" type="s" access="read"/>
    <property name="Text" type="s" access="read"/>
    <property name="RemainingSeconds" type="x" access="read"/>
    <property name="Muted" type="b" access="read"/>
    <property name="Popups" type="b" access="read"/>
    <annotation name="org.freedesktop.DBus.Property.EmitsChangedSignal" value="false"/>
  </interface>
  <interface name="org.freedesktop.Application">
    <method name="Activate"><arg type="a{sv}" direction="in"/></method>
    <method name="Open"><arg type="as" direction="in"/><arg type="a{sv}" direction="in"/></method>
    <method name="ActivateAction">
      <arg type="s" direction="in"/><arg type="av" direction="in"/><arg type="a{sv}" direction="in"/>
    </method>
  </interface>
</node>)";

/// What the desktop handed to this process when it started it, in the words of `org.freedesktop.Application`.
GVariant* platformData() {
    GVariantDict data;
    g_variant_dict_init(&data, nullptr);
    if (const char* token = g_getenv("XDG_ACTIVATION_TOKEN")) {
        g_variant_dict_insert(&data, "activation-token", "s", token);
    }
    return g_variant_dict_end(&data);
}

} // namespace

bool Control::claimName(GDBusConnection* sessionBus) {
    constexpr guint32 doNotQueue = 4;
    constexpr guint32 isPrimaryOwner = 1;
    const auto answer = VariantHandle{g_dbus_connection_call_sync(
        sessionBus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", busName, doNotQueue), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        nullptr)};
    guint32 ownership = 0;
    if (answer) {
        g_variant_get(answer.get(), "(u)", &ownership);
    }
    return ownership == isPrimaryOwner;
}

bool Control::showMenuOfOwner(GDBusConnection* sessionBus, ErrorSlot& error) {
    return VariantHandle{g_dbus_connection_call_sync(sessionBus, busName, objectPath, applicationInterface,
                                                     "Activate", g_variant_new("(@a{sv})", platformData()), nullptr,
                                                     G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, &error)} !=
           nullptr;
}

Control::Control(GDBusConnection* sessionBus, ControlledProgram program)
    : _program{std::move(program)}
    , _sessionBus{sessionBus} {
    static constexpr GDBusInterfaceVTable table{&Control::call, &Control::property, nullptr, {}};
    GDBusNodeInfo* const node = g_dbus_node_info_new_for_xml(interfaces, nullptr);
    if (!node) {
        fatal();
    }
    const auto publish = [&](GDBusInterfaceInfo* interface) {
        return g_dbus_connection_register_object(sessionBus, objectPath, interface, &table, this, nullptr, nullptr);
    };
    _timerObject = publish(node->interfaces[0]);
    _applicationObject = publish(node->interfaces[1]);
    g_dbus_node_info_unref(node);
}

Control::~Control() {
    g_dbus_connection_unregister_object(_sessionBus, _timerObject);
    g_dbus_connection_unregister_object(_sessionBus, _applicationObject);
}

void Control::call(GDBusConnection*, const char*, const char*, const char* interface, const char* method,
                   GVariant* parameters, GDBusMethodInvocation* invocation, gpointer self) {
    using Command = ControlledProgram::Command;
    auto& control = *static_cast<Control*>(self);
    const std::string_view name = method;
    if (std::string_view{interface} == applicationInterface) {
        const std::size_t last = g_variant_n_children(parameters) - 1;
        const VariantHandle platformData{g_variant_get_child_value(parameters, last)};
        const char* token = nullptr;
        if (g_variant_lookup(platformData.get(), "activation-token", "&s", &token)) {
            control._program.activationTokenCame(token);
        }
    }
    if (name == "ShowMenu" || name == "Activate" || name == "Open") {
        control._program.showMenu();
        g_dbus_method_invocation_return_value(invocation, nullptr);
    } else if (name == "ActivateAction") {
        const char* action = nullptr;
        g_variant_get(parameters, "(&s@av@a{sv})", &action, nullptr, nullptr);
        control.run(control.find(&Command::action, action), invocation);
    } else {
        control.run(control.find(&Command::method, name), invocation);
    }
}

const ControlledProgram::Command* Control::find(Name name, std::string_view value) const {
    const auto found = std::find_if(_program.commands.begin(), _program.commands.end(),
                                    [&](const auto& command) { return command.*name == value; });
    return found == _program.commands.end() ? nullptr : &*found;
}

void Control::run(const ControlledProgram::Command* command, GDBusMethodInvocation* invocation) {
    if (!command) {
        g_dbus_method_invocation_return_error(invocation, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                              "Marvelode Timer has no such action.");
    } else if (!_program.pick(command->entry)) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.marvelode.Timer.Error.Busy",
                                                   "A window of Marvelode Timer waits for an answer.");
    } else {
        g_dbus_method_invocation_return_value(invocation, nullptr);
    }
}

GVariant* Control::property(GDBusConnection*, const char*, const char*, const char*, const char* name, GError**,
                            gpointer self) {
    const ControlledProgram& program = static_cast<Control*>(self)->_program;
    const std::string_view property = name;
    if (property == "State") {
        return g_variant_new_string(program.isReminding() ? "Reminding" : "Timing");
    }
    if (property == "Text") {
        return g_variant_new_string(program.text().c_str());
    }
    if (property == "RemainingSeconds") {
        return g_variant_new_int64(program.remainingSeconds());
    }
    return g_variant_new_boolean(property == "Muted" ? program.isMuted() : program.showsPopups());
}

} // namespace platform::freedesktop
