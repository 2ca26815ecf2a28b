#pragma once

// The program's own name on the session bus. It keeps a second timer from starting beside the first, and through it
// scripts and the desktop do what the menu does.

#include "platform/linux/ActivationToken.hpp"
#include "platform/linux/Findings.hpp"
#include "platform/linux/SessionEnvironment.hpp"
#include "platform/linux/glib/ExportedInterface.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::linux {

/// What others can do with the program and see of it.
struct ControlledProgram {
    /// One menu entry under the names by which it is called from outside.
    struct Command {
        std::string method; ///< As a method on the bus: "ToggleMute".
        std::string action; ///< As an action of the desktop: "toggle-mute".
        std::string entry;  ///< The entry's title in the menu.
    };

    std::vector<Command> commands;
    /// Picks the menu entry of that title from the event loop. `picked` is called once its action has run or its
    /// window is on the screen, or destroyed uncalled if the entry cannot be picked or its window cannot be shown.
    std::function<void(std::string_view entry, std::function<void()> picked)> pick;
    /// Shows the menu as a window. `shown` is called once that is on the screen, or destroyed uncalled if it cannot
    /// be shown.
    std::function<void(std::function<void()> shown)> showMenu;
    ActivationToken& activationToken; ///< For the window that a call opens.
    SessionEnvironment& session;      ///< Adopts the display of the caller that activates the program.
    std::function<bool()> isReminding;
    std::function<std::string()> text;
    std::function<std::int64_t()> remainingSeconds; ///< Negative once the break is due.
    std::function<bool()> isMuted;
    std::function<bool()> showsPopups;
    std::function<unsigned()> settingsState;             ///< Another number once those two may be different.
    std::function<Findings()> findings;                  ///< What it alone knows of itself and its desktop.
    std::function<void(std::chrono::seconds span)> hold; ///< For at least `shortestHold`, at most `longestHold`.
    std::function<void()> release;
    std::function<std::string()> holdReason; ///< Empty if reminders are not held back.

    static constexpr std::chrono::seconds shortestHold{1};
    static constexpr std::chrono::seconds longestHold = std::chrono::hours{24};
};

class RemoteControl {
public:
    static constexpr const char* busName = "org.marvelode.Timer"; ///< And that of its interface.
    static constexpr const char* objectPath = "/org/marvelode/Timer";

    /// Claims the program's name for this process; false if another timer has it, or, with a reason in `error`, if
    /// the bus cannot tell.
    static bool claimName(GDBusConnection* sessionBus, ErrorSlot& error);

    /// Asks the timer that owns the name to show its menu on this process's display, in front as far as this
    /// process may itself come to the front. Returns true once the menu is on the screen; or false, with a reason
    /// in `error`, if that fails or takes longer than the timer waits for a window.
    static bool showMenuOfOwner(GDBusConnection* sessionBus, ErrorSlot& error);

    /// Answers calls on the bus from now on, each once what it asks for is done.
    RemoteControl(GDBusConnection* sessionBus, ControlledProgram program);

    /// Tells those who listen which properties have changed since the last call, if any of those have that are
    /// announced. Called after each event.
    void announceChanges();

private:
    /// What the properties whose changes are announced are made of.
    struct Announced {
        bool isReminding = false;
        bool isMuted = false;
        bool showsPopups = false;
        std::string holdReason;
        bool operator==(const Announced&) const = default;
    };

    using Name = std::string ControlledProgram::Command::*;
    const ControlledProgram::Command* find(Name name, std::string_view value) const;
    void activate(std::string_view method, GVariant* arguments, GDBusMethodInvocation* call);
    bool heed(GVariant* platformData, GDBusMethodInvocation* call);
    void showMenu(GDBusMethodInvocation* call);
    bool answerHere(std::string_view method, GVariant* arguments, GDBusMethodInvocation* call);
    bool actHere(std::string_view action, GDBusMethodInvocation* call);
    void hold(std::int64_t seconds, GDBusMethodInvocation* call);
    void release(GDBusMethodInvocation* call);
    void pick(const ControlledProgram::Command* command, GDBusMethodInvocation* call);
    void diagnose(GDBusMethodInvocation* call) const;
    GVariant* property(std::string_view name) const;
    Announced current();
    void announce(const Announced& before);

    ControlledProgram _program;
    ExportedInterface _timer;
    ExportedInterface _application;
    Announced _known; ///< As it was last announced.
    bool _hasLooked = false;
    std::optional<unsigned> _settingsState; ///< When `isMuted` and `showsPopups` were asked.
};

} // namespace platform::linux
