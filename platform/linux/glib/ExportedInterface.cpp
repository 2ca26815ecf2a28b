#include "platform/linux/glib/ExportedInterface.hpp"

#include "platform/Fatal.hpp"

#include <utility>

namespace platform::linux {
namespace {

ExportedInterface::Call answeringAtOnce(ExportedInterface::Method method) {
    return [method = std::move(method)](std::string_view name, GVariant* arguments, GDBusMethodInvocation* call) {
        if (const VariantHandle answer = method(name, arguments)) {
            g_dbus_method_invocation_return_value(call, answer.get());
        } else {
            g_dbus_method_invocation_return_error_literal(call, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                                          "No such thing");
        }
    };
}

} // namespace

ExportedInterface::ExportedInterface(GDBusConnection* bus, std::string path, const char* description, Method method,
                                     Property property)
    : ExportedInterface{bus, std::move(path), description, answeringAtOnce(std::move(method)),
                        std::move(property)} {}

ExportedInterface::ExportedInterface(GDBusConnection* bus, std::string path, const char* description, Call call,
                                     Property property)
    : _bus{shared(bus)}
    , _path{std::move(path)}
    , _description{g_dbus_node_info_new_for_xml(description, nullptr)}
    , _call{std::move(call)}
    , _property{std::move(property)} {
    static const GDBusInterfaceVTable functions{
        [](GDBusConnection*, const char*, const char*, const char*, const char* name, GVariant* arguments,
           GDBusMethodInvocation* invocation,
           gpointer self) { static_cast<ExportedInterface*>(self)->_call(name, arguments, invocation); },
        [](GDBusConnection*, const char*, const char*, const char*, const char* name, GError** error,
           gpointer self) -> GVariant* {
            VariantHandle value = static_cast<ExportedInterface*>(self)->_property(name);
            if (!value) {
                g_set_error_literal(error, G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_PROPERTY, "Not set");
            }
            return value.release();
        },
        nullptr,
        {}};
    if (!_description) {
        fatal();
    }
    _registration = g_dbus_connection_register_object(_bus.get(), _path.c_str(), _description->interfaces[0],
                                                      &functions, this, nullptr, nullptr);
}

ExportedInterface::~ExportedInterface() { g_dbus_connection_unregister_object(_bus.get(), _registration); }

void ExportedInterface::emit(const char* signal, GVariant* arguments) const {
    g_dbus_connection_emit_signal(_bus.get(), nullptr, _path.c_str(), _description->interfaces[0]->name, signal,
                                  arguments, nullptr); // fails only on a closed bus, which ends the program
}

void ExportedInterface::delegate(const std::vector<Signal>& signals) {
    const GDBusInterfaceInfo& interface = *_description->interfaces[0];
    GVariantBuilder properties;
    g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
    for (GDBusPropertyInfo** each = interface.properties; *each; ++each) {
        if (const VariantHandle value = _property((*each)->name)) {
            g_variant_builder_add(&properties, "{sv}", (*each)->name, value.get());
        }
    }
    BusDeputy::Messages messages;
    for (const auto& [name, arguments] : signals) {
        messages.emplace_back(g_dbus_message_new_signal(_path.c_str(), interface.name, name));
        g_dbus_message_set_body(messages.back().get(), arguments.get());
    }
    if (!_deputy) {
        answerInPerson();
    }
    _deputy->tell(owned(g_variant_builder_end(&properties)), std::move(messages));
}

void ExportedInterface::answerInPerson() {
    if (_deputy) {
        _deputy->rest();
    } else {
        _deputy.emplace(_bus.get(), _path, _description->interfaces[0]->name);
    }
}

void ExportedInterface::announce(GVariant* changed) const {
    g_dbus_connection_emit_signal(
        _bus.get(), nullptr, _path.c_str(), "org.freedesktop.DBus.Properties", "PropertiesChanged",
        g_variant_new("(s@a{sv}as)", _description->interfaces[0]->name, changed, nullptr), nullptr); // as above
}

} // namespace platform::linux
