#include "platform/linux/glib/BusDeputy.hpp"

#include <algorithm>
#include <iterator>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>

namespace platform::linux {
namespace {

/// Guards all that both threads know, from its first moment to its last. While it is held, a message may be given
/// its place in the queue of what is sent; nothing is waited for.
std::mutex mutex;

using ContextHandle = std::unique_ptr<GMainContext, Release<g_main_context_unref>>;

bool is(const char* text, std::string_view expected) { return text && text == expected; }

/// The tuple of a message's arguments, if they are of that type.
GVariant* argumentsOf(GDBusMessage* message, const char* type) {
    GVariant* const body = g_dbus_message_get_body(message);
    return body && g_variant_is_of_type(body, G_VARIANT_TYPE(type)) ? body : nullptr;
}

} // namespace

struct BusDeputy::State {
    GDBusConnection* bus = nullptr;
    std::string path;
    std::string interface;
    VariantHandle properties;
    Messages signals;         ///< To be sent by GLib's thread.
    ContextHandle context;    ///< That thread's, once it is known.
    Source* source = nullptr; ///< In that context.
    bool isOver = false;

    VariantHandle answerTo(GDBusMessage* question) const;
    void send(GDBusMessage* message) const;
    void sendSignals();
};

/// Sends what there is to be sent. GLib would be handed each signal while its locks are held, on which the thread
/// that this wakes falls asleep again, up to three times.
struct BusDeputy::Source {
    GSource base;
    State* state; ///< Null at the end.

    static bool isDue(GSource* source) {
        const std::scoped_lock lock{mutex};
        const State* const state = reinterpret_cast<Source*>(source)->state;
        return state && !state->signals.empty();
    }
    static gboolean prepare(GSource* source, int* timeout) {
        *timeout = -1;
        return isDue(source);
    }
    static gboolean check(GSource* source) { return isDue(source); }
    static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
        const std::scoped_lock lock{mutex};
        if (State* const state = reinterpret_cast<Source*>(source)->state) {
            state->sendSignals();
        }
        return G_SOURCE_CONTINUE;
    }

    /// A new one in this thread's context.
    static Source* attached(State* state) {
        static GSourceFuncs functions{prepare, check, dispatch, nullptr, nullptr, nullptr};
        GSource* const source = g_source_new(&functions, sizeof(Source));
        reinterpret_cast<Source*>(source)->state = state;
        g_source_attach(source, state->context.get());
        return reinterpret_cast<Source*>(source);
    }
};

/// The tuple of results, or null for what had better go the usual way: all other messages, and all mistakes.
VariantHandle BusDeputy::State::answerTo(GDBusMessage* question) const {
    if (!properties || g_dbus_message_get_message_type(question) != G_DBUS_MESSAGE_TYPE_METHOD_CALL ||
        !is(g_dbus_message_get_interface(question), "org.freedesktop.DBus.Properties") ||
        !is(g_dbus_message_get_path(question), path)) {
        return nullptr;
    }
    const char* const method = g_dbus_message_get_member(question);
    const char* asked = nullptr;
    const char* name = nullptr;
    if (GVariant* const one = argumentsOf(question, "(ss)"); one && is(method, "Get")) {
        g_variant_get(one, "(&s&s)", &asked, &name);
    } else if (GVariant* const all = argumentsOf(question, "(s)"); all && is(method, "GetAll")) {
        g_variant_get(all, "(&s)", &asked);
    }
    if (!is(asked, interface)) {
        return nullptr;
    }
    if (!name) {
        return owned(g_variant_new("(@a{sv})", properties.get()));
    }
    const VariantHandle value{g_variant_lookup_value(properties.get(), name, nullptr)};
    return value ? owned(g_variant_new("(v)", value.get())) : nullptr;
}

void BusDeputy::State::send(GDBusMessage* message) const {
    g_dbus_connection_send_message(bus, message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                   nullptr); // fails only on a closed bus, which ends the program
}

void BusDeputy::State::sendSignals() {
    for (const auto& signal : std::exchange(signals, {})) {
        send(signal.get());
    }
}

BusDeputy::BusDeputy(GDBusConnection* bus, std::string path, std::string interface)
    : _bus{shared(bus)} {
    std::unique_ptr<State> state;
    {
        const std::scoped_lock lock{mutex};
        state = std::make_unique<State>();
        state->bus = bus;
        state->path = std::move(path);
        state->interface = std::move(interface);
    }
    _state = state.get();
    _filter = g_dbus_connection_add_filter(bus, filter, state.release(), [](gpointer released) {
        const std::scoped_lock lock{mutex};
        const std::unique_ptr<State> owner{static_cast<State*>(released)};
    });
}

BusDeputy::~BusDeputy() {
    {
        const std::scoped_lock lock{mutex};
        _state->properties.reset();
        _state->signals.clear();
        _state->isOver = true;
        if (Source* const source = std::exchange(_state->source, nullptr)) {
            source->state = nullptr;
            g_source_destroy(&source->base);
            g_source_unref(&source->base);
        }
    }
    g_dbus_connection_remove_filter(_bus.get(), _filter);
}

void BusDeputy::tell(VariantHandle properties, Messages signals) {
    ContextHandle context;
    {
        const std::scoped_lock lock{mutex};
        _state->properties.swap(properties);
        std::move(signals.begin(), signals.end(), std::back_inserter(_state->signals));
        if (!_state->source) {
            _state->sendSignals();
            return;
        }
        context.reset(g_main_context_ref(_state->context.get()));
    }
    g_main_context_wakeup(context.get()); // with no lock held
}

void BusDeputy::rest() {
    const std::scoped_lock lock{mutex};
    _state->sendSignals();
    _state->properties.reset();
}

/// Runs in GLib's thread. Returns the message if it is not dealt with here.
GDBusMessage* BusDeputy::filter(GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer self) {
    if (!isIncoming) {
        return message;
    }
    const std::scoped_lock lock{mutex};
    State& state = *static_cast<State*>(self);
    if (!state.source && !state.isOver) {
        state.context.reset(g_main_context_ref_thread_default());
        state.source = Source::attached(&state);
    }
    const VariantHandle answer = state.answerTo(message);
    if (!answer) {
        return message;
    }
    if (!(g_dbus_message_get_flags(message) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED)) {
        const ObjectHandle<GDBusMessage> reply{g_dbus_message_new_method_reply(message)};
        g_dbus_message_set_body(reply.get(), answer.get());
        state.send(reply.get());
    }
    g_object_unref(message);
    return nullptr;
}

} // namespace platform::linux
