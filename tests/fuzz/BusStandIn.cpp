#include "tests/fuzz/BusStandIn.hpp"

#include "platform/Text.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <list>
#include <map>
#include <string>

using platform::linux::VariantHandle;

/// A call on its way: what GLib knows of it is none of the exporters' business.
struct _GDBusMethodInvocation { // NOLINT(*-reserved-identifier, bugprone-*): GLib's name
    const GDBusMethodInfo* method;
    fuzz::Answer answer = fuzz::Answer::None;
};

namespace {

struct Exported {
    const GDBusInterfaceInfo* interface;
    const GDBusInterfaceVTable* functions;
    gpointer self;
};

std::map<guint, Exported> exported;
std::list<_GDBusMethodInvocation> calls;
guint lastNumber = 0;

/// The type of a tuple of `arguments`.
std::string typeOf(GDBusArgInfo* const* arguments) {
    std::string type = "(";
    for (; arguments && *arguments; ++arguments) {
        type += (*arguments)->signature;
    }
    return type + ")";
}

bool isOf(GVariant* value, const std::string& type) {
    return value ? g_variant_is_of_type(value, G_VARIANT_TYPE(type.c_str())) != FALSE : type == "()";
}

/// Owns what may be a floating reference, as GLib's functions do.
void answer(GDBusMethodInvocation* call, fuzz::Answer answer, GVariant* value = nullptr) {
    const VariantHandle kept = platform::linux::owned(value);
    fuzz::require(call->answer == fuzz::Answer::None, "a call is answered once");
    fuzz::require(answer == fuzz::Answer::Error || isOf(value, typeOf(call->method->out_args)),
                  "an answer is of the type declared");
    call->answer = answer;
}

} // namespace

GDBusConnection* fuzz::bus() {
    static auto* const connection = static_cast<GDBusConnection*>(g_object_new(G_TYPE_DBUS_CONNECTION, nullptr));
    return connection;
}

fuzz::Answer fuzz::call(std::string_view line) {
    const auto [name, text] = cut(line, " ");
    for (const auto& [number, object] : exported) {
        const GDBusMethodInfo* const method = g_dbus_interface_info_lookup_method(
            const_cast<GDBusInterfaceInfo*>(object.interface), std::string{name}.c_str());
        if (!method) {
            continue;
        }
        const VariantHandle arguments{
            !platform::isUtf8(text) ? nullptr
                                    : g_variant_parse(G_VARIANT_TYPE(typeOf(method->in_args).c_str()), text.data(),
                                                      text.data() + text.size(), nullptr, nullptr)};
        if (!arguments) {
            continue;
        }
        GDBusMethodInvocation& invocation = calls.emplace_back(_GDBusMethodInvocation{method});
        object.functions->method_call(bus(), ":1.1", "/", object.interface->name, method->name, arguments.get(),
                                      &invocation, object.self);
        return invocation.answer;
    }
    return Answer::None;
}

void fuzz::readProperties() {
    for (const auto& [number, object] : exported) {
        for (GDBusPropertyInfo** each = object.interface->properties; each && *each; ++each) {
            platform::linux::ErrorSlot error;
            const VariantHandle value{object.functions->get_property(bus(), ":1.1", "/", object.interface->name,
                                                                     (*each)->name, error.out(), object.self)};
            require(error ? !value : isOf(value.get(), (*each)->signature), "a property is of the type declared");
        }
    }
}

void fuzz::requireThatAllAreAnswered() {
    for (const GDBusMethodInvocation& call : calls) {
        require(call.answer != Answer::None, "every call is answered");
    }
    calls.clear();
}

// GLib's functions, as far as what exports objects calls them.
extern "C" {

guint g_dbus_connection_register_object(GDBusConnection*, const char*, GDBusInterfaceInfo* interface,
                                        const GDBusInterfaceVTable* functions, gpointer self, GDestroyNotify,
                                        GError**) {
    exported[++lastNumber] = {interface, functions, self};
    return lastNumber;
}

gboolean g_dbus_connection_unregister_object(GDBusConnection*, guint number) { return exported.erase(number) == 1; }

gboolean g_dbus_connection_emit_signal(GDBusConnection*, const char*, const char*, const char* interface,
                                       const char* signal, GVariant* arguments, GError**) {
    const VariantHandle kept = platform::linux::owned(arguments);
    for (const auto& [number, object] : exported) {
        if (std::string_view{object.interface->name} == interface) {
            const GDBusSignalInfo* const declared =
                g_dbus_interface_info_lookup_signal(const_cast<GDBusInterfaceInfo*>(object.interface), signal);
            fuzz::require(declared && isOf(arguments, typeOf(declared->args)), "a signal is as declared");
        }
    }
    return TRUE;
}

void g_dbus_method_invocation_return_value(GDBusMethodInvocation* call, GVariant* value) {
    answer(call, fuzz::Answer::Value, value);
}

void g_dbus_method_invocation_return_error(GDBusMethodInvocation* call, GQuark, int, const char*, ...) {
    answer(call, fuzz::Answer::Error);
}

void g_dbus_method_invocation_return_error_literal(GDBusMethodInvocation* call, GQuark, int, const char*) {
    answer(call, fuzz::Answer::Error);
}

void g_dbus_method_invocation_return_dbus_error(GDBusMethodInvocation* call, const char*, const char*) {
    answer(call, fuzz::Answer::Error);
}
}
