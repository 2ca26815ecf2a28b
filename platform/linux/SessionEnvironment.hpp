#pragma once

// The environment of the helper programs: this program's own, but with the display of the session in which the
// timer was last activated. The session bus can outlive the graphical session in which this program was started.

#include <array>
#include <map>
#include <string>
#include <vector>

namespace platform::linux {

class SessionEnvironment {
public:
    /// The variables that lead to a display.
    static constexpr std::array variables{"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "XDG_CURRENT_DESKTOP"};

    /// Replaces all of `variables` by those in `session`, which are this program's from now on. Does nothing if
    /// `session` names no display.
    void adopt(std::map<std::string, std::string> session);

    /// One "NAME=value" for each variable. Activation tokens are not among them: each is good for one window.
    std::vector<std::string> forHelpers() const;

    /// A helper program has shown a window.
    void displayWasFound() { _failures = _reminders = 0; }

    /// A helper program has found no display to show a window on.
    void displayWasMissing() { ++_failures; }

    /// Whether three windows in a row have found no display, and none of them was shown since.
    bool isOver() const { return _failures >= 3; }

    /// Whether to remind the user at all. While the session is over, only every tenth call returns true: often
    /// enough to notice that its display is there again.
    bool isWorthAReminder() { return !isOver() || ++_reminders % 10 == 0; }

private:
    std::map<std::string, std::string> _session; ///< Empty until one is adopted.
    unsigned _failures = 0;
    unsigned _reminders = 0; ///< Since the session is over.
};

} // namespace platform::linux
