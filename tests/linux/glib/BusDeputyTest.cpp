// What is answered without the main loop, which does not run while a test asks.

#include "platform/linux/glib/ExportedInterface.hpp"
#include "tests/support/BusSignals.hpp"
#include "tests/support/PrivateBuses.hpp"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

constexpr const char* interface = "org.marvelode.Test.Lamp";
constexpr const char* path = "/Lamp";
constexpr const char* properties = "org.freedesktop.DBus.Properties";

constexpr const char* description = R"xml(<node><interface name="org.marvelode.Test.Lamp">
  <property name="Brightness" type="u" access="read"/>
  <property name="Colour" type="s" access="read"/>
  <property name="Missing" type="s" access="read"/>
  <method name="GetAll"><arg type="s" direction="in"/><arg type="s" direction="out"/></method>
  <signal name="Changed"><arg type="u"/></signal>
</interface></node>)xml";

/// An object whose brightness counts how it was changed.
class Lamp {
public:
    explicit Lamp(GDBusConnection* bus)
        : _interface{bus, path, description,
                     [](std::string_view, GVariant*) { return owned(g_variant_new("(s)", "its own method")); },
                     [this](std::string_view name) { return property(name); }} {}

    void change() {
        ++_brightness;
        std::vector<ExportedInterface::Signal> signals;
        signals.push_back({"Changed", owned(g_variant_new("(u)", _brightness))});
        _interface.delegate(signals);
    }
    void drop() {
        ++_brightness;
        _interface.answerInPerson();
    }

    int questions = 0; ///< Of the main loop, or in advance.

private:
    VariantHandle property(std::string_view name) {
        ++questions;
        if (name == "Missing") {
            return nullptr;
        }
        return owned(name == "Brightness" ? g_variant_new_uint32(_brightness) : g_variant_new_string("warm"));
    }

    unsigned _brightness = 0;
    ExportedInterface _interface;
};

class DeputysAnswers : public testing::Test {
protected:
    /// The answer, printed, or the error. The main loop does not run meanwhile.
    std::string ask(const char* method, GVariant* arguments) {
        constexpr int milliseconds = 5000;
        ErrorSlot error;
        const VariantHandle answer{g_dbus_connection_call_sync(panel.get(), name, path, properties, method,
                                                               arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                                                               milliseconds, nullptr, error.out())};
        return answer ? printed(answer) : error.message();
    }
    std::string get(const char* property) { return ask("Get", g_variant_new("(ss)", interface, property)); }

    /// The same while the main loop runs, of any method.
    std::string callAt(const char* object, const char* of, const char* method, GVariant* arguments) {
        std::string error;
        const VariantHandle answer = call(panel.get(), name, object, of, method, arguments, &error);
        return answer ? printed(answer) : error;
    }
    std::string getThroughLoop(const char* property) {
        return callAt(path, properties, "Get", g_variant_new("(ss)", interface, property));
    }

    ObjectHandle<GDBusConnection> program = connectToSession();
    ObjectHandle<GDBusConnection> panel = connectToSession();
    const char* name = g_dbus_connection_get_unique_name(program.get());
    std::optional<Lamp> lamp{program.get()};
};

TEST_F(DeputysAnswers, AreGivenWhileTheMainLoopIsBusy) {
    lamp->change();
    const int questions = lamp->questions;
    EXPECT_EQ(get("Brightness"), "(<uint32 1>,)");
    EXPECT_EQ(get("Colour"), "(<'warm'>,)");
    EXPECT_EQ(ask("GetAll", g_variant_new("(s)", interface)), "({'Brightness': <uint32 1>, 'Colour': <'warm'>},)");
    EXPECT_EQ(lamp->questions, questions);
}

TEST_F(DeputysAnswers, AreThoseOfTheLatestChange) {
    lamp->change();
    lamp->change();
    EXPECT_EQ(get("Brightness"), "(<uint32 2>,)");
}

TEST_F(DeputysAnswers, AreLeftToTheMainLoopBeforeAndAfterwards) {
    EXPECT_EQ(getThroughLoop("Brightness"), "(<uint32 0>,)");
    lamp->change();
    lamp->drop();
    EXPECT_EQ(getThroughLoop("Brightness"), "(<uint32 2>,)");
}

TEST_F(DeputysAnswers, AreNoneToAnythingElse) {
    const auto others = [this] {
        return std::vector{
            getThroughLoop("Missing"),
            getThroughLoop("Weight"),
            callAt(path, interface, "GetAll", g_variant_new("(s)", interface)),
            callAt("/Other", properties, "GetAll", g_variant_new("(s)", interface)),
            callAt(path, properties, "GetAll", g_variant_new("(s)", "org.marvelode.Test.Other")),
            callAt(path, properties, "GetAll", g_variant_new("(ss)", interface, "Colour")),
            callAt(path, properties, "Get", g_variant_new("(ss)", "org.marvelode.Test.Other", "Colour")),
            callAt(path, properties, "Get", g_variant_new("(s)", interface)),
            callAt(path, properties, "Get", nullptr),
            callAt(path, properties, "Set",
                   g_variant_new("(ssv)", interface, "Colour", g_variant_new_string("cold"))),
        };
    };
    const std::vector<std::string> before = others();
    lamp->change();
    EXPECT_EQ(get("Brightness"), "(<uint32 1>,)");
    EXPECT_EQ(others(), before);
    EXPECT_EQ(get("Brightness"), "(<uint32 1>,)");
}

/// All that a connection receives from another one, not from the bus itself, in the order of its arrival.
class Arrivals {
public:
    explicit Arrivals(GDBusConnection* bus)
        : _bus{bus} {
        const auto keep = [](GDBusConnection*, GDBusMessage* message, gboolean isIncoming, gpointer messages) {
            if (isIncoming && *g_dbus_message_get_sender(message) == ':') {
                g_async_queue_push(static_cast<GAsyncQueue*>(messages), g_object_ref(message));
            }
            return message;
        };
        const auto release = [](gpointer messages) { g_async_queue_unref(static_cast<GAsyncQueue*>(messages)); };
        _filter = g_dbus_connection_add_filter(bus, keep, g_async_queue_ref(_messages), release);
    }
    ~Arrivals() {
        g_dbus_connection_remove_filter(_bus, _filter);
        g_async_queue_unref(_messages);
    }
    Arrivals(const Arrivals&) = delete;
    Arrivals& operator=(const Arrivals&) = delete;

    /// The next one, or null if none comes within that time.
    ObjectHandle<GDBusMessage> next(std::chrono::microseconds patience = std::chrono::seconds{20}) const {
        const auto span = static_cast<guint64>(patience.count());
        return ObjectHandle<GDBusMessage>{static_cast<GDBusMessage*>(g_async_queue_timeout_pop(_messages, span))};
    }

private:
    GDBusConnection* _bus;
    GAsyncQueue* _messages = g_async_queue_new_full(g_object_unref);
    unsigned _filter;
};

bool isOf(GDBusMessage* message, GDBusMessageType type) { return g_dbus_message_get_message_type(message) == type; }

/// The number that a message bears.
unsigned numberIn(GDBusMessage* message) {
    VariantHandle value{g_variant_get_child_value(g_dbus_message_get_body(message), 0)};
    if (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) {
        value.reset(g_variant_get_variant(value.get()));
    }
    return g_variant_get_uint32(value.get());
}

class AnswersInTurn : public DeputysAnswers {
protected:
    /// Asks for the brightness, without waiting for the answer.
    void send(GDBusMessageFlags flags = G_DBUS_MESSAGE_FLAGS_NONE) {
        const ObjectHandle<GDBusMessage> question{g_dbus_message_new_method_call(name, path, properties, "Get")};
        g_dbus_message_set_body(question.get(), g_variant_new("(ss)", interface, "Brightness"));
        g_dbus_message_set_flags(question.get(), flags);
        g_dbus_connection_send_message(panel.get(), question.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                       nullptr);
    }
};

TEST_F(AnswersInTurn, AreNotSentToWhomWantsNone) {
    const Arrivals arrivals{panel.get()};
    lamp->change();
    send(G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED);
    EXPECT_EQ(get("Colour"), "(<'warm'>,)");
    EXPECT_EQ(printed(owned(g_dbus_message_get_body(arrivals.next().get()))), "(<'warm'>,)");
}

TEST_F(AnswersInTurn, NeverTellOfTheTimeBeforeASignalAfterIt) {
    const BusSignals listening{panel.get(), program.get(), interface};
    const Arrivals arrivals{panel.get()};
    constexpr unsigned changes = 2000;
    for (unsigned change = 0; change < changes; ++change) {
        lamp->change();
        send();
    }
    unsigned announced = 0;
    for (unsigned answers = 0; answers < changes;) {
        const ObjectHandle<GDBusMessage> message = arrivals.next();
        ASSERT_TRUE(message);
        if (isOf(message.get(), G_DBUS_MESSAGE_TYPE_SIGNAL)) {
            announced = numberIn(message.get());
        } else {
            ++answers;
            ASSERT_GE(numberIn(message.get()), announced);
        }
    }
    EXPECT_GE(announced, changes / 2);
}

TEST_F(AnswersInTurn, OrErrorsComeWhateverBecomesOfTheObjectMeanwhile) {
    const Arrivals arrivals{panel.get()};
    constexpr int times = 500;
    for (int time = 0; time < times; ++time) {
        lamp.emplace(program.get());
        lamp->change();
        send();
        if (time % 2 == 0) {
            lamp->drop();
        }
        send();
        lamp.reset();
    }
    int answers = 0;
    EXPECT_TRUE(runLoopUntil([&] {
        g_main_context_wakeup(nullptr);
        answers += arrivals.next(std::chrono::milliseconds{1}) != nullptr;
        return answers == 2 * times;
    })) << answers;
}

} // namespace
} // namespace platform::linux
