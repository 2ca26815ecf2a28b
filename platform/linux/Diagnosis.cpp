#include "platform/linux/Diagnosis.hpp"

#include "platform/linux/Autostart.hpp"
#include "platform/linux/RegularFile.hpp"
#include "platform/linux/RemoteControl.hpp"
#include "platform/linux/Resources.hpp"
#include "platform/linux/glib/BusCall.hpp"
#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/tray/TrayHost.hpp"

#include <sys/utsname.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

constexpr std::chrono::milliseconds patience{2000};

/// A bus, or the reason why it cannot be reached.
struct Connection {
    ObjectHandle<GDBusConnection> bus;
    std::string problem;
};

/// Gives up a bus that says nothing: GLib itself would wait for half a minute.
Connection connectTo(GBusType type) {
    ErrorSlot error;
    const TextHandle address{g_dbus_address_get_for_bus_sync(type, nullptr, error.out())};
    if (!address) {
        return {nullptr, error.message()};
    }
    using Attempt = std::shared_ptr<std::optional<Connection>>; // which the answer may outlive
    const auto connected = [](GObject*, GAsyncResult* result, gpointer data) {
        const std::unique_ptr<Attempt> attempt{static_cast<Attempt*>(data)};
        ErrorSlot problem;
        ObjectHandle<GDBusConnection> bus{g_dbus_connection_new_for_address_finish(result, problem.out())};
        **attempt = Connection{std::move(bus), problem.message()};
    };
    const Attempt attempt = std::make_shared<std::optional<Connection>>();
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    g_dbus_connection_new_for_address(address.get(), flags, nullptr, nullptr, connected,
                                      std::make_unique<Attempt>(attempt).release());
    DelayedCall deadline;
    deadline.start(patience, [&] { *attempt = Connection{nullptr, "does not answer"}; });
    while (!*attempt) {
        g_main_context_iteration(nullptr, TRUE);
    }
    return *std::exchange(*attempt, std::nullopt);
}

/// The answer of a service that runs; nothing if it does not, or has none of that type.
VariantHandle ask(GDBusConnection* bus, const BusMethod& method, GVariant* arguments, const char* type) {
    return VariantHandle{g_dbus_connection_call_sync(
        bus, method.service, method.object, method.interface, method.name, arguments, G_VARIANT_TYPE(type),
        G_DBUS_CALL_FLAGS_NO_AUTO_START, static_cast<int>(patience.count()), nullptr, nullptr)};
}

constexpr BusMethod busMethod(const char* name) {
    return {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", name};
}

bool hasOwner(GDBusConnection* bus, const char* name) {
    gboolean isOwned = FALSE;
    if (const auto answer = ask(bus, busMethod("NameHasOwner"), g_variant_new("(s)", name), "(b)")) {
        g_variant_get(answer.get(), "(b)", &isOwned);
    }
    return isOwned != FALSE;
}

std::string variable(const char* name) {
    const char* value = g_getenv(name);
    return value ? value : "";
}

std::string orUnknown(const std::string& text) { return text.empty() ? "unknown" : text; }

std::string describeProgram(const Places& places) {
    std::string text = contentsOfFile(places.resources / "BuildInfo.txt").value_or("its resources are missing");
    text.erase(text.find_last_not_of('\n') + 1);
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text + ", GLib " + std::to_string(glib_major_version) + "." + std::to_string(glib_minor_version) + "." +
           std::to_string(glib_micro_version);
}

std::string describeSystem() {
    const TextHandle name{g_get_os_info(G_OS_INFO_KEY_PRETTY_NAME)};
    utsname kernel{};
    uname(&kernel);
    return std::string{name ? name.get() : "unknown"} + ", " + kernel.sysname + " " + kernel.release + " " +
           kernel.machine;
}

std::string describeDesktop() {
    return orUnknown(variable("XDG_CURRENT_DESKTOP")) + ", session type " +
           orUnknown(variable("XDG_SESSION_TYPE")) +
           (variable("DISPLAY").empty() ? ", no X display" : ", X display") +
           (variable("WAYLAND_DISPLAY").empty() ? ", no Wayland display" : ", Wayland display");
}

std::string describePanel(GDBusConnection* bus) {
    constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
    unsigned process = 0;
    const auto answer = ask(bus, busMethod("GetConnectionUnixProcessID"), g_variant_new("(s)", watcher), "(u)");
    if (!answer) {
        return "none that shows status items";
    }
    g_variant_get(answer.get(), "(u)", &process);
    const std::string name = processName(process);
    return orUnknown(name) + ", which gets " + std::string{TrayHost::ofProcess(name).inWords()};
}

std::string describeNotifications(GDBusConnection* bus) {
    const char* const name = "org.freedesktop.Notifications";
    const BusMethod method{name, "/org/freedesktop/Notifications", name, "GetServerInformation"};
    const auto answer = ask(bus, method, nullptr, "(ssss)");
    if (!answer) {
        return "no service runs";
    }
    const char* service = nullptr;
    const char* version = nullptr;
    g_variant_get(answer.get(), "(&ss&ss)", &service, nullptr, &version, nullptr);
    return std::string{service} + " " + version;
}

std::string describeSystemBus() {
    const Connection connection = connectTo(G_BUS_TYPE_SYSTEM);
    if (!connection.bus) {
        return connection.problem;
    }
    return hasOwner(connection.bus.get(), "org.freedesktop.login1") ? "answers, with a login manager"
                                                                    : "answers, without a login manager";
}

/// How a sound reaches the ear: the helper, and what it plays to.
std::string describeSounds(const Places& places) {
    const bool hasServer =
        !variable("PULSE_SERVER").empty() ||
        g_file_test((fs::path{g_get_user_runtime_dir()} / "pulse/native").c_str(), G_FILE_TEST_EXISTS);
    const bool hasCard = g_file_test("/dev/snd/timer", G_FILE_TEST_EXISTS);
    const bool hasHelper = access((places.helpers / "marvelode-timer-sound").c_str(), X_OK) == 0;
    return std::string{hasHelper ? "" : "its program is missing, "} +
           (hasServer ? "to PulseAudio or PipeWire"
            : hasCard ? "to a sound card, without a sound server"
                      : "neither a sound server nor a sound card");
}

std::string describeWindows(const Places& places) {
    return access((places.helpers / "marvelode-timer-window").c_str(), X_OK) == 0 ? "their program is there"
                                                                                  : "their program is missing";
}

using SettingsHandle = std::unique_ptr<GKeyFile, Release<g_key_file_unref>>;

std::string storedSettings(GKeyFile* file) {
    std::string text;
    const TextsHandle keys{g_key_file_get_keys(file, "Settings", nullptr, nullptr)};
    for (char** key = keys.get(); key && *key; ++key) {
        const TextHandle value{g_key_file_get_value(file, "Settings", *key, nullptr)};
        text += std::string{" "} + *key + "=" + value.get();
    }
    return text;
}

/// Those of the desktop. What a user's own command is called, and with what, is nobody else's business.
std::string desktopSettings(GKeyFile* file) {
    std::string text;
    for (const char* key : {"HoldWhile", "RestartAfterLocked", "Volume"}) {
        if (const TextHandle value{g_key_file_get_value(file, "Desktop", key, nullptr)}) {
            text += std::string{" "} + key + "=" + value.get();
        }
    }
    return text + (g_key_file_has_key(file, "Desktop", "HoldCommand", nullptr) ? " HoldCommand is set" : "");
}

/// The file, and what is in it or wrong with it.
std::string describeSettings(const Places& places) {
    const std::string name = places.settings.string();
    const FileContent content = readRegularFile(places.settings);
    if (content.isMissing) {
        return name + " is not there";
    }
    if (!content.problem.empty()) {
        return content.problem;
    }
    const SettingsHandle file{g_key_file_new()};
    ErrorSlot error;
    if (!g_key_file_load_from_data(file.get(), content.bytes.data(), content.bytes.size(), G_KEY_FILE_NONE,
                                   error.out())) {
        return name + " is damaged: " + error.message();
    }
    return name + storedSettings(file.get()) + desktopSettings(file.get());
}

/// What the running timer says of itself; one of an older version cannot.
Findings ownWords(GDBusConnection* bus) {
    const BusMethod diagnose{RemoteControl::busName, RemoteControl::objectPath, RemoteControl::busName, "Diagnose"};
    const auto said = ask(bus, diagnose, nullptr, "(a(ss))");
    if (!said) {
        return {{"Timer", "runs, but says nothing of itself: it may be of an older version"}};
    }
    Findings found;
    const VariantHandle pairs{g_variant_get_child_value(said.get(), 0)};
    for (std::size_t index = 0; index < g_variant_n_children(pairs.get()); ++index) {
        const char* subject = nullptr;
        const char* line = nullptr;
        g_variant_get_child(pairs.get(), index, "(&s&s)", &subject, &line);
        found.emplace_back(std::string{"Timer "} + subject, line);
    }
    return found;
}

/// The running timer's own words, and its properties.
Findings runningTimer(GDBusConnection* bus) {
    if (!hasOwner(bus, RemoteControl::busName)) {
        return {{"Timer", "does not run"}};
    }
    const BusMethod getAll{RemoteControl::busName, RemoteControl::objectPath, "org.freedesktop.DBus.Properties",
                           "GetAll"};
    const auto properties = ask(bus, getAll, g_variant_new("(s)", RemoteControl::busName), "(a{sv})");
    if (!properties) {
        return {{"Timer", "runs, but does not answer"}};
    }
    Findings found = ownWords(bus);
    const VariantHandle values{g_variant_get_child_value(properties.get(), 0)};
    const TextHandle text{g_variant_print(values.get(), FALSE)};
    found.emplace_back("Timer properties", text.get());
    return found;
}

std::string replaced(const std::string& text, const std::string& pattern, const char* replacement) {
    const std::unique_ptr<GRegex, Release<g_regex_unref>> expression{
        g_regex_new(pattern.c_str(), GRegexCompileFlags{}, GRegexMatchFlags{}, nullptr)};
    const TextHandle result{g_regex_replace_literal(expression.get(), text.c_str(),
                                                    static_cast<gssize>(text.size()), 0, replacement,
                                                    GRegexMatchFlags{}, nullptr)};
    return result ? result.get() : std::string{};
}

std::string escaped(const char* text) { return TextHandle{g_regex_escape_string(text, -1)}.get(); }

} // namespace

Findings diagnose(const Places& places) {
    Findings found{
        {"Program", describeProgram(places)}, {"System", describeSystem()}, {"Desktop", describeDesktop()}};
    const Connection session = connectTo(G_BUS_TYPE_SESSION);
    found.emplace_back("Session bus", session.bus ? "answers" : session.problem);
    if (session.bus) {
        found.emplace_back("Panel", describePanel(session.bus.get()));
        found.emplace_back("Notifications", describeNotifications(session.bus.get()));
    }
    found.emplace_back("System bus", describeSystemBus());
    found.emplace_back("Windows", describeWindows(places));
    found.emplace_back("Sounds", describeSounds(places));
    found.emplace_back("Settings", describeSettings(places));
    found.emplace_back("Autostart", Autostart::ofThisUser(places.resources).isOn() ? "on" : "off");
    for (auto& finding : session.bus ? runningTimer(session.bus.get()) : Findings{}) {
        found.push_back(std::move(finding));
    }
    for (auto& finding : found) {
        finding.second = withoutPrivateMatters(std::move(finding.second));
    }
    return found;
}

std::string withoutPrivateMatters(std::string text) {
    text = TextHandle{g_utf8_make_valid(text.data(), static_cast<gssize>(text.size()))}.get();
    text = replaced(text, "\\b(unix|unixexec|tcp|nonce-tcp|autolaunch|launchd|systemd):[^\\s;]*", "ADDRESS");
    const std::array<std::pair<const char*, const char*>, 2> folders{
        {{g_get_user_runtime_dir(), "$XDG_RUNTIME_DIR"}, {g_get_home_dir(), "~"}}};
    for (const auto& [folder, name] : folders) {
        if (std::string_view{folder}.size() > 1) {
            text = replaced(text, escaped(folder) + "(?=/|\\b)", name);
        }
    }
    const std::array<std::pair<const char*, const char*>, 3> names{
        {{g_get_user_name(), "USER"}, {g_get_real_name(), "USER"}, {g_get_host_name(), "HOST"}}};
    for (const auto& [name, stand] : names) {
        if (std::string_view{name}.size() > 1) {
            text = replaced(text, "(?<!\\w)" + escaped(name) + "(?!\\w)", stand);
        }
    }
    return text;
}

} // namespace platform::linux
