#pragma once

// The program's own name on the session bus. It keeps a second timer from starting beside the first, and lets
// scripts and the desktop do what the menu does.

#include "platform/linux/ActivationToken.hpp"
#include "platform/linux/glib/ExportedInterface.hpp"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::linux {

/// What `RemoteControl` lets others do and see.
struct ControlledProgram {
    /// One menu entry under the names by which it is called from outside.
    struct Command {
        std::string method; ///< As a method on the bus: "ToggleMute".
        std::string action; ///< As an action of the desktop: "toggle-mute".
        std::string entry;  ///< The entry's title in the menu.
    };

    std::vector<Command> commands;
    /// Has the entry picked soon, and lets `picked` know when that is done or its window comes up. If the entry
    /// cannot be picked by then, `picked` is never called.
    std::function<void(std::string_view entry, std::function<void()> picked)> pick;
    std::function<void()> showMenu;
    ActivationToken& activationToken; ///< For the window that a call opens.
    std::function<bool()> isReminding;
    std::function<std::string()> text;
    std::function<std::int64_t()> remainingSeconds; ///< Negative once the break is due.
    std::function<bool()> isMuted;
    std::function<bool()> showsPopups;
};

class RemoteControl {
public:
    /// Claims the program's name for this process; false if another timer has it.
    static bool claimName(GDBusConnection* sessionBus);

    /// Has the timer that owns the name show its menu in front, as far as this process may itself come to the
    /// front; false, with a reason in `error`, if it does not answer.
    static bool showMenuOfOwner(GDBusConnection* sessionBus, ErrorSlot& error);

    /// Answers calls on the bus from now on, through `program`.
    RemoteControl(GDBusConnection* sessionBus, ControlledProgram program);

private:
    using Name = std::string ControlledProgram::Command::*;
    const ControlledProgram::Command* find(Name name, std::string_view value) const;
    void activate(std::string_view method, GVariant* arguments, GDBusMethodInvocation* call);
    void showMenu(GDBusMethodInvocation* call);
    void pick(const ControlledProgram::Command* command, GDBusMethodInvocation* call);
    GVariant* property(std::string_view name) const;

    ControlledProgram _program;
    ExportedInterface _timer;
    ExportedInterface _application;
};

} // namespace platform::linux
