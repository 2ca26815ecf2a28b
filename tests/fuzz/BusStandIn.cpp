#include "tests/fuzz/BusStandIn.hpp"

#include "platform/Text.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <array>
#include <list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

using platform::linux::ObjectHandle;
using platform::linux::VariantHandle;

/// A call on its way: what GLib knows of it is none of the exporters' business.
struct _GDBusMethodInvocation { // NOLINT(*-reserved-identifier, bugprone-*): GLib's name
    const GDBusMethodInfo* method;
    fuzz::Answer answer = fuzz::Answer::None;
};

namespace {

/// Something that is exported, with the functions that answer for it.
struct Exported {
    const GDBusInterfaceInfo* interface;
    const GDBusInterfaceVTable* functions;
    gpointer self;
};

struct Subscription {
    std::string signal;
    GDBusSignalCallback heard = nullptr;
    gpointer self = nullptr;
};

struct Watch {
    GBusNameAppearedCallback appeared;
    GBusNameVanishedCallback vanished;
    gpointer self;
};

/// Who sees each message before all others do.
struct Filter {
    GDBusMessageFilterFunction function;
    gpointer self;
    GDestroyNotify release;
};

/// A call by the program that waits for its answer.
struct OwnCall {
    platform::linux::TextHandle answerType; ///< Null for any.
    ObjectHandle<GCancellable> cancellable;
    GAsyncReadyCallback answered;
    gpointer self;
};

std::map<guint, Exported> exported;
std::map<guint, Subscription> subscriptions;
std::map<guint, Watch> watches;
std::map<guint, Filter> filters;
std::list<_GDBusMethodInvocation> calls;
std::list<OwnCall> ownCalls;
guint lastNumber = 0;
constexpr guint asked = 7; // the number of each question
int repliesSent = 0;       // to the one at hand

/// The tuple that `text` stands for, of that type unless it is null; null if there is none that D-Bus can carry.
VariantHandle tupleIn(std::string_view text, const char* type = nullptr) {
    if (!platform::isUtf8(text)) {
        return nullptr;
    }
    VariantHandle tuple{g_variant_parse(type ? G_VARIANT_TYPE(type) : nullptr, text.data(),
                                        text.data() + text.size(), nullptr, nullptr)};
    const bool canBeCarried = tuple && g_variant_is_of_type(tuple.get(), G_VARIANT_TYPE_TUPLE) &&
                              g_variant_is_signature(g_variant_get_type_string(tuple.get()));
    return canBeCarried ? std::move(tuple) : nullptr;
}

/// Calls `function` with each of the values, of which it may add and remove some.
template <typename Value, typename Function>
void forEach(const std::map<guint, Value>& values, Function function) {
    for (auto each = values.begin(); each != values.end();) {
        const auto [number, value] = *each;
        function(value);
        each = values.upper_bound(number);
    }
}

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

fuzz::Answer call(const std::string& name, std::string_view text) {
    for (const auto& [number, object] : exported) {
        const GDBusMethodInfo* const method =
            g_dbus_interface_info_lookup_method(const_cast<GDBusInterfaceInfo*>(object.interface), name.c_str());
        const VariantHandle arguments = method ? tupleIn(text, typeOf(method->in_args).c_str()) : nullptr;
        if (arguments) {
            GDBusMethodInvocation& invocation = calls.emplace_back(_GDBusMethodInvocation{method});
            object.functions->method_call(fuzz::bus(), ":1.1", "/", object.interface->name, method->name,
                                          arguments.get(), &invocation, object.self);
            return invocation.answer;
        }
    }
    return fuzz::Answer::None;
}

/// A question with arguments; null if the words are none.
ObjectHandle<GDBusMessage> question(std::string_view words) {
    std::array<std::string, 3> names; // of object, interface and method
    for (std::string& name : names) {
        const auto [first, rest] = fuzz::cut(words, " ");
        name = first;
        words = rest;
    }
    const auto& [object, interface, method] = names;
    if (!g_variant_is_object_path(object.c_str()) || !g_dbus_is_interface_name(interface.c_str()) ||
        !g_dbus_is_member_name(method.c_str())) {
        return nullptr;
    }
    ObjectHandle<GDBusMessage> message{
        g_dbus_message_new_method_call(":1.2", object.c_str(), interface.c_str(), method.c_str())};
    g_dbus_message_set_serial(message.get(), asked);
    if (const VariantHandle arguments = tupleIn(words)) {
        g_dbus_message_set_body(message.get(), arguments.get());
    }
    return message;
}

/// Shows a question to the filters; what they let through is not answered here.
fuzz::Answer ask(std::string_view words) {
    ObjectHandle<GDBusMessage> message = question(words);
    if (!message) {
        return fuzz::Answer::None;
    }
    repliesSent = 0;
    forEach(filters, [&](const Filter& each) {
        if (message) {
            message.reset(each.function(fuzz::bus(), message.release(), TRUE, each.self));
        }
    });
    fuzz::require(repliesSent == (message ? 0 : 1), "a question is answered once, by whom it is not let through");
    return message ? fuzz::Answer::None : fuzz::Answer::Value;
}

void requireDeclared(const char* interface, const char* signal, GVariant* arguments) {
    for (const auto& [number, object] : exported) {
        if (std::string_view{object.interface->name} == interface) {
            const GDBusSignalInfo* const declared =
                g_dbus_interface_info_lookup_signal(const_cast<GDBusInterfaceInfo*>(object.interface), signal);
            fuzz::require(declared && isOf(arguments, typeOf(declared->args)), "a signal is as declared");
        }
    }
}

void hear(std::string_view signal, std::string_view text) {
    if (const VariantHandle arguments = tupleIn(text)) {
        forEach(subscriptions, [&](const Subscription& each) {
            if (each.signal == signal) {
                each.heard(fuzz::bus(), ":1.1", "/", "interface", each.signal.c_str(), arguments.get(), each.self);
            }
        });
    }
}

/// What the caller finds under the name of a result: the answer, and whether the call was given up.
struct OwnAnswer {
    VariantHandle value;
    bool isCancelled;
};

void answerOwnCall(std::string_view text) {
    if (ownCalls.empty()) {
        return;
    }
    const OwnCall call = std::move(ownCalls.front());
    ownCalls.pop_front();
    OwnAnswer answer{tupleIn(text, call.answerType.get()),
                     g_cancellable_is_cancelled(call.cancellable.get()) != FALSE};
    call.answered(G_OBJECT(fuzz::bus()), reinterpret_cast<GAsyncResult*>(&answer), call.self);
}

} // namespace

GDBusConnection* fuzz::bus() {
    static auto* const connection = static_cast<GDBusConnection*>(g_object_new(G_TYPE_DBUS_CONNECTION, nullptr));
    return connection;
}

fuzz::Answer fuzz::happen(std::string_view line) {
    const auto [name, text] = cut(line, " ");
    if (name == "signal") {
        const auto [signal, arguments] = cut(text, " ");
        hear(signal, arguments);
    } else if (name == "answer") {
        answerOwnCall(text);
    } else if (name == "ask") {
        return ask(text);
    } else if (name == "appears") {
        forEach(watches, [](const Watch& watch) { watch.appeared(bus(), "name", ":1.1", watch.self); });
    } else if (name == "vanishes") {
        forEach(watches, [](const Watch& watch) { watch.vanished(bus(), "name", watch.self); });
    } else {
        return call(std::string{name}, text);
    }
    return Answer::None;
}

std::size_t fuzz::unansweredCalls() { return ownCalls.size(); }

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
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): what is named here is what is used
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
    requireDeclared(interface, signal, kept.get());
    return TRUE;
}

guint g_dbus_connection_add_filter(GDBusConnection*, GDBusMessageFilterFunction filter, gpointer self,
                                   GDestroyNotify release) {
    filters[++lastNumber] = {filter, self, release};
    return lastNumber;
}

void g_dbus_connection_remove_filter(GDBusConnection*, guint number) {
    const Filter filter = filters.at(number);
    filters.erase(number);
    filter.release(filter.self);
}

/// Under a name of its own here, since releases of GLib declare it differently.
gboolean sendMessage(GDBusConnection*, GDBusMessage* message, GDBusSendMessageFlags, guint32*,
                     GError**) __asm__("g_dbus_connection_send_message");

gboolean sendMessage(GDBusConnection*, GDBusMessage* message, GDBusSendMessageFlags, guint32*, GError**) {
    GVariant* const body = g_dbus_message_get_body(message);
    if (g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_SIGNAL) {
        requireDeclared(g_dbus_message_get_interface(message), g_dbus_message_get_member(message), body);
    } else {
        fuzz::require(g_dbus_message_get_reply_serial(message) == asked &&
                          (isOf(body, "(v)") || isOf(body, "(a{sv})")),
                      "an answer is to the question");
        ++repliesSent;
    }
    return TRUE;
}

guint g_dbus_connection_signal_subscribe(GDBusConnection*, const char*, const char*, const char* signal,
                                         const char*, const char*, GDBusSignalFlags, GDBusSignalCallback heard,
                                         gpointer self, GDestroyNotify) {
    subscriptions[++lastNumber] = {signal, heard, self};
    return lastNumber;
}

void g_dbus_connection_signal_unsubscribe(GDBusConnection*, guint number) { subscriptions.erase(number); }

guint g_bus_watch_name_on_connection(GDBusConnection*, const char*, GBusNameWatcherFlags,
                                     GBusNameAppearedCallback appeared, GBusNameVanishedCallback vanished,
                                     gpointer self, GDestroyNotify) {
    watches[++lastNumber] = {appeared, vanished, self};
    return lastNumber;
}

void g_bus_unwatch_name(guint number) { watches.erase(number); }

void g_dbus_connection_call(GDBusConnection*, const char*, const char*, const char*, const char*,
                            GVariant* arguments, const GVariantType* answerType, GDBusCallFlags, int,
                            GCancellable* cancellable, GAsyncReadyCallback answered, gpointer self) {
    const VariantHandle kept = platform::linux::owned(arguments);
    fuzz::require(!kept || g_variant_is_of_type(kept.get(), G_VARIANT_TYPE_TUPLE),
                  "a call has a tuple of arguments");
    if (answered) {
        platform::linux::TextHandle type{answerType ? g_variant_type_dup_string(answerType) : nullptr};
        ownCalls.push_back({std::move(type), platform::linux::shared(cancellable), answered, self});
    }
}

GVariant* g_dbus_connection_call_finish(GDBusConnection*, GAsyncResult* result, GError** error) {
    auto& answer = *reinterpret_cast<OwnAnswer*>(result);
    if (answer.isCancelled || !answer.value) {
        g_set_error_literal(error, G_IO_ERROR, answer.isCancelled ? G_IO_ERROR_CANCELLED : G_IO_ERROR_FAILED, "no");
        return nullptr;
    }
    return answer.value.release();
}

const char* g_dbus_connection_get_unique_name(GDBusConnection*) { return ":1.2"; }

GVariant* g_dbus_connection_call_sync(GDBusConnection*, const char*, const char*, const char*, const char*,
                                      GVariant* arguments, const GVariantType*, GDBusCallFlags, int, GCancellable*,
                                      GError** error) {
    const VariantHandle kept = platform::linux::owned(arguments);
    g_set_error_literal(error, G_IO_ERROR, G_IO_ERROR_TIMED_OUT, "silence");
    return nullptr;
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
// NOLINTEND(readability-inconsistent-declaration-parameter-name)
