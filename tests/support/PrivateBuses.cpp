#include "tests/support/PrivateBuses.hpp"

#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <optional>
#include <string_view>
#include <utility>

using platform::linux::ErrorSlot;
using platform::linux::ObjectHandle;
using platform::linux::TextHandle;
using platform::linux::VariantHandle;

namespace {

/// A bus that starts no services, whatever is installed, and has room for any flood.
constexpr const char* configuration = R"xml(<busconfig>
  <type>session</type>
  <listen>unix:tmpdir=/tmp</listen>
  <auth>EXTERNAL</auth>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
  <limit name="max_incoming_bytes">1000000000</limit>
  <limit name="max_outgoing_bytes">1000000000</limit>
  <limit name="max_message_size">1000000000</limit>
  <limit name="max_replies_per_connection">50000</limit>
  <limit name="max_match_rules_per_connection">50000</limit>
</busconfig>)xml";

/// A daemon that ends with the test process, whichever way that ends.
class Daemon {
public:
    explicit Daemon(const char* variable) {
        const TemporaryFolder folder;
        const std::string option = "--config-file=" + folder.write("bus.conf", configuration).string();
        std::array<const char*, 6> command{"dbus-daemon", option.c_str(),      "--nofork",
                                           "--nopidfile", "--print-address=1", nullptr};
        const auto endWithTest = [](gpointer) { prctl(PR_SET_PDEATHSIG, SIGTERM); };
        int output = -1;
        ErrorSlot error;
        if (!g_spawn_async_with_pipes(nullptr, const_cast<char**>(command.data()), nullptr,
                                      static_cast<GSpawnFlags>(G_SPAWN_SEARCH_PATH | G_SPAWN_DO_NOT_REAP_CHILD |
                                                               G_SPAWN_STDERR_TO_DEV_NULL),
                                      endWithTest, nullptr, &_process, nullptr, &output, nullptr, error.out())) {
            ADD_FAILURE() << error.message();
            std::abort();
        }
        for (char each = 0; read(output, &each, 1) == 1 && each != '\n';) {
            _address += each;
        }
        close(output);
        g_setenv(variable, _address.c_str(), TRUE);
    }
    ~Daemon() {
        kill(_process, SIGTERM); // upon which it removes its socket
        waitpid(_process, nullptr, 0);
    }
    Daemon(const Daemon&) = delete;
    Daemon& operator=(const Daemon&) = delete;

    const char* address() const { return _address.c_str(); }
    void stop() const { kill(_process, SIGSTOP); }
    void goOn() const { kill(_process, SIGCONT); }

private:
    GPid _process = 0;
    std::string _address;
};

struct Buses {
    std::optional<Daemon> system{"DBUS_SYSTEM_BUS_ADDRESS"};
    Daemon session{"DBUS_SESSION_BUS_ADDRESS"};

    static Buses& running() {
        static Buses buses;
        return buses;
    }
};

ObjectHandle<GDBusConnection> connectTo(const char* address) {
    ErrorSlot error;
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    ObjectHandle<GDBusConnection> bus{
        g_dbus_connection_new_for_address_sync(address, flags, nullptr, nullptr, error.out())};
    if (!bus) {
        ADD_FAILURE() << error.message();
        std::abort();
    }
    return bus;
}

/// Wakes the main loop when a span of time is over.
class Alarm {
public:
    explicit Alarm(std::chrono::milliseconds span) {
        const auto ring = [](gpointer self) -> gboolean {
            static_cast<Alarm*>(self)->_source = 0;
            return G_SOURCE_REMOVE;
        };
        _source = g_timeout_add(static_cast<guint>(span.count()), ring, this);
    }
    ~Alarm() {
        if (_source != 0) {
            g_source_remove(_source);
        }
    }
    Alarm(const Alarm&) = delete;
    Alarm& operator=(const Alarm&) = delete;

    bool hasRung() const { return _source == 0; }

private:
    unsigned _source;
};

} // namespace

ObjectHandle<GDBusConnection> connectToSession() { return connectTo(Buses::running().session.address()); }

ObjectHandle<GDBusConnection> connectToSystem() { return connectTo(Buses::running().system->address()); }

void stopSystemBus() { Buses::running().system.reset(); }

void startSystemBus() { Buses::running().system.emplace("DBUS_SYSTEM_BUS_ADDRESS"); }

SilentSessionBus::SilentSessionBus() { Buses::running().session.stop(); }

SilentSessionBus::~SilentSessionBus() { Buses::running().session.goOn(); }

void takeName(GDBusConnection* bus, const char* name) {
    constexpr unsigned doNotQueue = 4;
    constexpr unsigned isOwner = 1;
    ErrorSlot error;
    const VariantHandle answer{
        g_dbus_connection_call_sync(bus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                                    "RequestName", g_variant_new("(su)", name, doNotQueue), G_VARIANT_TYPE("(u)"),
                                    G_DBUS_CALL_FLAGS_NONE, -1, nullptr, error.out())};
    ASSERT_TRUE(answer) << error.message();
    unsigned result = 0;
    g_variant_get(answer.get(), "(u)", &result);
    ASSERT_EQ(result, isOwner) << name;
}

void awaitListenerForSleep() {
    const ObjectHandle<GDBusConnection> bus = connectToSystem();
    const auto isListening = [&] {
        g_main_context_wakeup(nullptr);
        const VariantHandle rules{g_dbus_connection_call_sync(
            bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus.Debug.Stats",
            "GetAllMatchRules", nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr)};
        const TextHandle text{rules ? g_variant_print(rules.get(), FALSE) : nullptr};
        return text && std::string_view{text.get()}.find("PrepareForSleep") != std::string_view::npos;
    };
    EXPECT_TRUE(runLoopUntil(isListening)) << "no program listens";
}

bool runLoopUntil(const std::function<bool()>& isDone) {
    const Alarm alarm{std::chrono::seconds{5}};
    while (!isDone() && !alarm.hasRung()) {
        g_main_context_iteration(nullptr, TRUE);
    }
    return isDone();
}

void runLoopFor(std::chrono::milliseconds span) {
    const Alarm alarm{span};
    while (!alarm.hasRung()) {
        g_main_context_iteration(nullptr, TRUE);
    }
}

VariantHandle call(GDBusConnection* from, const std::string& to, const char* path, const char* interface,
                   const char* method, GVariant* arguments, std::string* error) {
    struct Answer {
        VariantHandle value;
        std::string error;
        bool hasCome = false;
    } answer;
    const auto answered = [](GObject* bus, GAsyncResult* result, gpointer data) {
        ErrorSlot problem;
        auto& slot = *static_cast<Answer*>(data);
        slot.value.reset(g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, problem.out()));
        slot.error = problem.message();
        slot.hasCome = true;
    };
    const ObjectHandle<GCancellable> cancellable{g_cancellable_new()};
    constexpr int noTimeout = G_MAXINT; // the wait has one
    g_dbus_connection_call(from, to.c_str(), path, interface, method, arguments, nullptr, G_DBUS_CALL_FLAGS_NONE,
                           noTimeout, cancellable.get(), answered, &answer);
    if (!runLoopUntil([&] { return answer.hasCome; })) {
        g_cancellable_cancel(cancellable.get());
        runLoopUntil([&] { return answer.hasCome; });
    }
    if (error) {
        *error = answer.error;
    } else {
        EXPECT_EQ(answer.error, "") << method;
    }
    return std::move(answer.value);
}
