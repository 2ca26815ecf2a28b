#include "platform/linux/RemoteControl.hpp"

#include "platform/linux/TimerInterface.hpp"
#include "platform/linux/glib/PendingCall.hpp"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace platform::linux {
namespace {

constexpr const char* applicationInterface = "org.freedesktop.Application";

constexpr const char* applicationDescription = R"xml(<node><interface name="org.freedesktop.Application">
  <method name="Activate"><arg type="a{sv}" direction="in"/></method>
  <method name="Open"><arg type="as" direction="in"/><arg type="a{sv}" direction="in"/></method>
  <method name="ActivateAction">
    <arg type="s" direction="in"/><arg type="av" direction="in"/><arg type="a{sv}" direction="in"/>
  </method>
</interface></node>)xml";

/// A function that answers `call` with success, once. If it is destroyed uncalled, the error is the answer.
std::function<void()> success(GDBusMethodInvocation* call, const char* error, const char* reason) {
    return [pending = std::make_shared<PendingCall>(call, error, reason)] { pending->succeed(); };
}

using Variables = std::map<std::string, std::string>;

/// What leads to this process's display, as "NAME=value" each.
GVariant* ownEnvironment() {
    GVariantBuilder builder;
    g_variant_builder_init(&builder, G_VARIANT_TYPE_BYTESTRING_ARRAY);
    for (const char* name : SessionEnvironment::variables) {
        if (const char* value = g_getenv(name)) {
            g_variant_builder_add(&builder, "^ay", (std::string{name} + "=" + value).c_str());
        }
    }
    return g_variant_builder_end(&builder);
}

/// The same as another process sent it. Values longer than any display's are left out.
Variables environmentIn(GVariant* platformData) {
    constexpr std::size_t longest = 4096;
    Variables variables;
    const VariantHandle sent{g_variant_lookup_value(platformData, "environ", G_VARIANT_TYPE_BYTESTRING_ARRAY)};
    for (std::size_t index = 0; sent && index < g_variant_n_children(sent.get()); ++index) {
        const char* text = nullptr;
        g_variant_get_child(sent.get(), index, "^&ay", &text);
        const std::string variable{text};
        const std::size_t nameEnd = variable.find('=');
        if (nameEnd != std::string::npos && variable.size() <= longest) {
            variables.insert_or_assign(variable.substr(0, nameEnd), variable.substr(nameEnd + 1));
        }
    }
    return variables;
}

/// What the desktop handed to this process when it started it, in the words of `org.freedesktop.Application`, and
/// the variables, in the words of `GApplication`.
GVariant* platformData() {
    GVariantDict data;
    g_variant_dict_init(&data, nullptr);
    if (const char* token = g_getenv("XDG_ACTIVATION_TOKEN")) {
        g_variant_dict_insert(&data, "activation-token", "s", token);
    }
    g_variant_dict_insert_value(&data, "environ", ownEnvironment());
    return g_variant_dict_end(&data);
}

} // namespace

bool RemoteControl::claimName(GDBusConnection* sessionBus, ErrorSlot& error) {
    constexpr guint32 doNotQueue = 4;
    constexpr guint32 isPrimaryOwner = 1;
    const auto answer = VariantHandle{g_dbus_connection_call_sync(
        sessionBus, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", busName, doNotQueue), G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr,
        error.out())};
    guint32 ownership = 0;
    if (answer) {
        g_variant_get(answer.get(), "(u)", &ownership);
    }
    return ownership == isPrimaryOwner;
}

bool RemoteControl::showMenuOfOwner(GDBusConnection* sessionBus, ErrorSlot& error) {
    constexpr int longerThanAWindow = 40'000; // milliseconds; the timer gives a window half a minute
    return VariantHandle{g_dbus_connection_call_sync(sessionBus, busName, objectPath, applicationInterface,
                                                     "Activate", g_variant_new("(@a{sv})", platformData()), nullptr,
                                                     G_DBUS_CALL_FLAGS_NO_AUTO_START, longerThanAWindow, nullptr,
                                                     error.out())} != nullptr;
}

RemoteControl::RemoteControl(GDBusConnection* sessionBus, ControlledProgram program)
    : _program{std::move(program)}
    , _timer{sessionBus, objectPath, timerInterface,
             [this](std::string_view method, GVariant* arguments, GDBusMethodInvocation* call) {
                 if (!answerHere(method, arguments, call)) {
                     pick(find(&ControlledProgram::Command::method, method), call);
                 }
             },
             [this](std::string_view name) { return owned(property(name)); }}
    , _application{sessionBus, objectPath, applicationDescription,
                   [this](std::string_view method, GVariant* arguments, GDBusMethodInvocation* call) {
                       activate(method, arguments, call);
                   },
                   nullptr} {}

void RemoteControl::activate(std::string_view method, GVariant* arguments, GDBusMethodInvocation* call) {
    const std::size_t last = g_variant_n_children(arguments) - 1;
    const VariantHandle platformData{g_variant_get_child_value(arguments, last)};
    const char* action = nullptr;
    if (method == "ActivateAction") {
        g_variant_get_child(arguments, 0, "&s", &action);
    }
    if (action && actHere(action, call)) {
        return; // it opens no window
    }
    const auto* command = action ? find(&ControlledProgram::Command::action, action) : nullptr;
    const bool isKnown = !action || command;
    if (isKnown && !heed(platformData.get(), call)) {
        return;
    }
    if (action) {
        pick(command, call);
    } else {
        showMenu(call);
    }
}

/// Takes over what the caller sends for a window. Answers the call, and returns false, if that makes no sense.
bool RemoteControl::heed(GVariant* platformData, GDBusMethodInvocation* call) {
    const char* token = nullptr;
    if (g_variant_lookup(platformData, "activation-token", "&s", &token) && !_program.activationToken.keep(token)) {
        g_dbus_method_invocation_return_error(call, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                              "The activation token is too long.");
        return false;
    }
    _program.session.adopt(environmentIn(platformData));
    return true;
}

/// Answers a method that picks no entry of the menu. Returns false if it does.
bool RemoteControl::answerHere(std::string_view method, GVariant* arguments, GDBusMethodInvocation* call) {
    if (method == "ShowMenu") {
        showMenu(call);
    } else if (method == "Diagnose") {
        diagnose(call);
    } else if (method == "Hold") {
        std::int64_t seconds = 0;
        g_variant_get(arguments, "(x)", &seconds);
        hold(seconds, call);
    } else if (method == "Release") {
        release(call);
    } else {
        return false;
    }
    return true;
}

/// The same for an action of the desktop.
bool RemoteControl::actHere(std::string_view action, GDBusMethodInvocation* call) {
    if (action == "hold-for-an-hour") {
        hold(std::chrono::seconds{std::chrono::hours{1}}.count(), call);
    } else if (action == "release") {
        release(call);
    } else {
        return false;
    }
    return true;
}

void RemoteControl::hold(std::int64_t seconds, GDBusMethodInvocation* call) {
    if (seconds < ControlledProgram::shortestHold.count() || seconds > ControlledProgram::longestHold.count()) {
        g_dbus_method_invocation_return_error(call, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                              "Reminders can be held for 1 to 86400 seconds.");
        return;
    }
    _program.hold(std::chrono::seconds{seconds});
    g_dbus_method_invocation_return_value(call, nullptr);
}

void RemoteControl::release(GDBusMethodInvocation* call) {
    _program.release();
    g_dbus_method_invocation_return_value(call, nullptr);
}

void RemoteControl::showMenu(GDBusMethodInvocation* call) {
    _program.showMenu(success(call, "org.marvelode.Timer.Error.NoWindow",
                              "Marvelode Timer cannot show its window: it may have no display."));
}

const ControlledProgram::Command* RemoteControl::find(Name name, std::string_view value) const {
    const auto found = std::find_if(_program.commands.begin(), _program.commands.end(),
                                    [&](const auto& command) { return command.*name == value; });
    return found == _program.commands.end() ? nullptr : &*found;
}

void RemoteControl::pick(const ControlledProgram::Command* command, GDBusMethodInvocation* call) {
    if (command) {
        _program.pick(
            command->entry,
            success(
                call, "org.marvelode.Timer.Error.Busy",
                "Marvelode Timer cannot do this now: one of its windows waits for an answer or cannot be shown, "
                "or it is ending."));
    } else {
        g_dbus_method_invocation_return_error(call, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                              "Marvelode Timer has no such action.");
    }
}

void RemoteControl::diagnose(GDBusMethodInvocation* call) const {
    GVariantBuilder findings;
    g_variant_builder_init(&findings, G_VARIANT_TYPE("a(ss)"));
    for (const auto& [subject, line] : _program.findings()) {
        const TextHandle text{g_utf8_make_valid(line.data(), static_cast<gssize>(line.size()))};
        g_variant_builder_add(&findings, "(ss)", subject.c_str(), text.get());
    }
    g_dbus_method_invocation_return_value(call, g_variant_new("(a(ss))", &findings));
}

GVariant* RemoteControl::property(std::string_view name) const {
    if (name == "State") {
        return g_variant_new_string(_program.isReminding() ? "Reminding" : "Timing");
    }
    if (name == "Text") {
        return g_variant_new_string(_program.text().c_str());
    }
    if (name == "RemainingSeconds") {
        return g_variant_new_int64(_program.remainingSeconds());
    }
    if (name == "Held") {
        return g_variant_new_boolean(!_program.holdReason().empty());
    }
    if (name == "HeldReason") {
        return g_variant_new_string(_program.holdReason().c_str());
    }
    return g_variant_new_boolean(name == "Muted" ? _program.isMuted() : _program.showsPopups());
}

void RemoteControl::announceChanges() {
    const Announced before = std::exchange(_known, current());
    if (std::exchange(_hasLooked, true) && before != _known) {
        announce(before);
    }
}

/// Looks at the settings' file no more often than others do.
RemoteControl::Announced RemoteControl::current() {
    Announced now{_program.isReminding(), _known.isMuted, _known.showsPopups, _program.holdReason()};
    if (const unsigned state = _program.settingsState(); state != _settingsState) {
        _settingsState = state;
        now.isMuted = _program.isMuted();
        now.showsPopups = _program.showsPopups();
    }
    return now;
}

void RemoteControl::announce(const Announced& before) {
    GVariantDict changed;
    g_variant_dict_init(&changed, nullptr);
    const auto add = [&](const char* name, bool isChanged) {
        if (isChanged) {
            g_variant_dict_insert_value(&changed, name, property(name));
        }
    };
    add("State", before.isReminding != _known.isReminding);
    add("Muted", before.isMuted != _known.isMuted);
    add("Popups", before.showsPopups != _known.showsPopups);
    add("Held", before.holdReason.empty() != _known.holdReason.empty());
    add("HeldReason", before.holdReason != _known.holdReason);
    _timer.announce(g_variant_dict_end(&changed));
}

} // namespace platform::linux
