#pragma once

// What the program should do, second by second, told in a few numbers and flags: an independent description of the
// break cycle, the status item's text, the menu's marks and the settings form, for whatever the user does.

#include "app/AppState.hpp"
#include "platform/TimerQueue.hpp"
#include "platform/UserDefaults.hpp"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace models {

using Milliseconds = std::int64_t;
using marvelode::AppState;
using Lines = std::vector<std::string>;

/// What the user enters into the settings form.
struct Entries {
    std::optional<std::int64_t> minutes;
    std::string sound;
    bool flipsRestartOnWake;
    bool flipsAutoRestart;
};

class CycleModel {
public:
    explicit CycleModel(platform::RepeatingTimersDuringModal policy)
        : _policy{policy} {}

    // What happens

    void launch();
    void wait(Milliseconds span);
    void setClockForth(Milliseconds span) { _clock += span; }
    void wake(Milliseconds asleep);
    void answer(bool isRestart);
    void toggleCheckBox() { isTicked = !isTicked; }
    void pickRestart();
    void pickMute();
    void pickPopups();
    void pickQuit();
    void openAbout() { _isPanelUp = true; }
    void closeAbout();
    void openSettings();
    void enter(const Entries& entries);

    /// Presses the form's button; false if the interval is refused, and then an error is up.
    bool confirm();

    /// Closes the form, with its error if there is one.
    void closeSettings();

    // What is to be seen

    std::map<std::string, platform::DefaultsValue, std::less<>> stored;
    AppState state = AppState::Init;
    bool isAlertUp = false;
    bool isTicked = false;
    bool isMuteMarked = false;
    bool isPopupsMarked = false;
    bool isAutoRestartOffered = false; ///< In the settings form as it was opened last.
    std::string title;
    bool isTitleRed = false;
    Lines heard;
    Lines published;

    bool isTimerPending() const { return _timer.has_value(); }
    Milliseconds deadline() const { return _deadline; } ///< On a wall clock that starts at zero.

private:
    enum class Kind { Work, Snooze };
    struct Pending {
        Milliseconds due;
        Kind kind;
    };

    bool flag(const std::string& key) const;
    bool flagWithDefault(const std::string& key);
    std::int64_t interval() const;
    void write(const std::string& key, const platform::DefaultsValue& value, const std::string& announcement);
    void announce(const std::string& event);
    void refresh();
    void restart();
    void fire(Kind kind);
    void remind(Kind kind);
    void afterReminder(Kind kind);
    void play(const std::string& sound);
    void goTo(Milliseconds instant);
    Milliseconds wall() const { return _now + _clock; }

    platform::RepeatingTimersDuringModal _policy;
    Milliseconds _now = 0;
    Milliseconds _clock = 0;
    Milliseconds _deadline = 0;
    Milliseconds _nextTick = 0;
    std::optional<Pending> _timer;
    Kind _reminderOf = Kind::Work;
    bool _isFirstRun = false;
    bool _isPanelUp = false;
    std::map<std::string, Milliseconds> _playingUntil;

    std::int64_t _formMinutes = 0;
    std::string _formSound;
    bool _formRestartOnWake = false;
    bool _formAutoRestart = false;
};

} // namespace models
