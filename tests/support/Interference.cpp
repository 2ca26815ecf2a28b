#include "tests/support/Interference.hpp"

#include <mutex>
#include <utility>
#include <vector>

using platform::linux::ObjectHandle;
using platform::linux::shared;

/// Shared with GLib's thread, in which the calls arrive.
struct Interference::State {
    GDBusConnection* const bus;
    const Step step;
    const Misbehaviour misbehaviour;
    std::mutex mutex;
    int timesLeft;
    int meetings = 0;
    std::vector<ObjectHandle<GDBusMessage>> waiting;

    State(GDBusConnection* connection, Step theStep, Misbehaviour kind, int times)
        : bus{connection}
        , step{std::move(theStep)}
        , misbehaviour{kind}
        , timesLeft{times} {}

    bool meets(GDBusMessage* message) {
        const std::scoped_lock lock{mutex};
        const char* const member = g_dbus_message_get_member(message);
        if (g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL || !member ||
            step.method != member || timesLeft == 0) {
            return false;
        }
        timesLeft -= timesLeft > 0;
        ++meetings;
        return true;
    }

    void send(GDBusMessage* reply) {
        g_dbus_connection_send_message(bus, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    }

    void answer(GDBusMessage* message, const std::string& text) {
        const ObjectHandle<GDBusMessage> reply{g_dbus_message_new_method_reply(message)};
        g_dbus_message_set_body(reply.get(), g_variant_new_parsed(text.c_str()));
        send(reply.get());
    }

    /// Returns whether the stand-in gets the call all the same.
    bool misbehave(GDBusMessage* message) {
        switch (misbehaviour) {
        case Misbehaviour::IsSilent:
            return false;
        case Misbehaviour::AnswersLate: {
            const std::scoped_lock lock{mutex};
            waiting.push_back(shared(message));
            return false;
        }
        case Misbehaviour::Refuses:
            send(ObjectHandle<GDBusMessage>{
                g_dbus_message_new_method_error_literal(message, "org.marvelode.Test.No", "No")}
                     .get());
            return false;
        case Misbehaviour::TalksNonsense:
            answer(message, step.nonsense);
            return false;
        case Misbehaviour::Floods:
            step.flood(bus);
            return true;
        case Misbehaviour::Dies:
            g_dbus_connection_close(bus, nullptr, nullptr, nullptr);
            return false;
        }
        return true;
    }
};

Interference::Interference(GDBusConnection* bus, const Step& step, Misbehaviour misbehaviour, int times)
    : _bus{shared(bus)}
    , _state{std::make_shared<State>(bus, step, misbehaviour, times)} {
    const auto filter = [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming,
                           gpointer data) -> GDBusMessage* {
        State& state = **static_cast<std::shared_ptr<State>*>(data);
        if (isIncoming && state.meets(message) && !state.misbehave(message)) {
            g_object_unref(message);
            return nullptr;
        }
        return message;
    };
    const auto letGo = [](gpointer data) {
        const std::unique_ptr<std::shared_ptr<State>> owner{static_cast<std::shared_ptr<State>*>(data)};
    };
    _filter = g_dbus_connection_add_filter(bus, filter, std::make_unique<std::shared_ptr<State>>(_state).release(),
                                           letGo);
}

Interference::~Interference() { g_dbus_connection_remove_filter(_bus.get(), _filter); }

int Interference::meetings() const {
    const std::scoped_lock lock{_state->mutex};
    return _state->meetings;
}

void Interference::answerNow() {
    const std::scoped_lock lock{_state->mutex};
    for (const auto& message : std::exchange(_state->waiting, {})) {
        _state->answer(message.get(), _state->step.answer);
    }
}
