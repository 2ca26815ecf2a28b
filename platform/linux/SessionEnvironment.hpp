#pragma once

// The environment of the helper programs: this program's own, but with the display of the session in which the
// timer was last activated. The session bus can outlive the graphical session in which this program was started;
// and who activates the timer may name a display that cannot be reached, or not for long.

#include <array>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {

class SessionEnvironment {
public:
    /// The variables that lead to a display.
    static constexpr std::array variables{"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY", "XDG_CURRENT_DESKTOP"};
    using Variables = std::map<std::string, std::string>;

    /// Replaces all of `variables` by those in `session`, and remembers the last ones by which a display was
    /// reached. Does nothing if `session` names no display.
    void adopt(Variables session);

    /// One "NAME=value" for each variable. Activation tokens are not among them: each is good for one window.
    std::vector<std::string> forHelpers() const;

    /// The number of the display in use: another one as soon as another display is.
    unsigned display() const { return _display; }

    /// A helper program has shown a window on `display`.
    void displayWasFound(unsigned display);

    /// A helper program has found no display, or none that answers, where `display` was to be. The other one that
    /// is known is in use from now on, if there is one.
    void displayWasMissing(unsigned display);

    /// A reminder could be shown nowhere.
    void reminderWasMissed() { ++_missed; }

    /// Whether three reminders in a row were missed, and no window was shown since.
    bool isOver() const { return _missed >= 3; }

    /// Whether to show a reminder at all. While the session is over, only every tenth call returns true: often
    /// enough to notice that its display is there again.
    bool isWorthAReminder() { return !isOver() || ++_reminders % 10 == 0; }

    /// Has `needDisplay` asked whether reminders are to be seen, and not only heard.
    void remindersNeedDisplay(std::function<bool()> needDisplay) { _needDisplay = std::move(needDisplay); }

    /// Whether to play a sound: not in a session that is over, unless the user relies on the sound alone.
    bool isWorthASound() const { return !isOver() || !_needDisplay(); }

private:
    struct Place {
        Variables variables;     ///< None stand for this program's own.
        bool wasReached = false; ///< A window was shown there.
    };

    Place _inUse{{}, true};
    Place _other{{}, true}; ///< The same until another is adopted; tried when nothing is found in the one in use.
    unsigned _display = 0;
    std::function<bool()> _needDisplay = [] { return true; };
    unsigned _missed = 0;
    unsigned _reminders = 0; ///< Since the session is over.
};

} // namespace platform::linux
