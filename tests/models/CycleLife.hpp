#pragma once

// One life of the program as the search through its states sees it: the state, what can happen in it, and what must
// hold after everything that happens.

#include "app/App.hpp"
#include "app/main.hpp"
#include "tests/stories/StoryDesktop.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <any>
#include <array>
#include <compare>
#include <memory>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

namespace models {

using namespace std::chrono_literals;
using marvelode::App;
using marvelode::app;
using platform::TimerQueue;
using story::AppState;
using story::Lines;

enum class Timer { None, Work, Snooze };
enum class Window { None, Popup, About, Settings, Error };

/// Everything that decides what can happen next, and nothing else: neither the clock nor how much time is left
/// does.
struct State {
    AppState phase;
    Timer timer;
    bool isOverdue; ///< The timer fell due and waits for a window to close.
    Window window;
    bool isAsleep;
    bool isFirstRun;
    bool popups;
    bool autoRestart;
    bool isPopupTicked;      ///< The popup keeps its tick from one showing to the next.
    bool formAutoRestart;    ///< The form keeps what was entered.
    bool restsByTheSettings; ///< The last reminder found popups and the automatic restart off.

    // NOLINTNEXTLINE(modernize-use-nullptr): the check takes the comparison for a number
    auto operator<=>(const State&) const = default;
};

inline std::ostream& operator<<(std::ostream& out, const State& state) {
    static constexpr std::array phases{"init", "timing", "reminding"};
    static constexpr std::array timers{"no timer", "work timer", "snooze timer"};
    static constexpr std::array windows{"no window", "popup", "about", "settings", "error"};
    out << phases.at(static_cast<std::size_t>(state.phase)) << ", "
        << timers.at(static_cast<std::size_t>(state.timer)) << ", "
        << windows.at(static_cast<std::size_t>(state.window));
    const std::array<std::pair<bool, const char*>, 8> flags{{{state.isOverdue, "overdue"},
                                                             {state.isAsleep, "asleep"},
                                                             {state.isFirstRun, "first run"},
                                                             {state.popups, "popups"},
                                                             {state.autoRestart, "auto restart"},
                                                             {state.isPopupTicked, "ticked"},
                                                             {state.formAutoRestart, "auto restart entered"},
                                                             {state.restsByTheSettings, "rests"}}};
    for (const auto& [isSet, name] : flags) {
        out << (isSet ? ", " : "") << (isSet ? name : "");
    }
    return out;
}

/// What can happen. What a deed means depends on the window in front.
enum class Deed {
    WaitUntilDue,
    SetClockForth,
    SetClockBack,
    FallAsleep,
    Wake,
    LosePower,
    Quit,
    PickRestart,
    PickPopups,
    OpenAbout,
    OpenSettings,
    FlipAutoRestart,
    ConfirmSettings,
    ConfirmNonsense,
    PressButton,
    Close,
    AnswerRestart,
    AnswerSnooze,
    TickOrUntick,
    Vanish,
};

using Path = std::vector<Deed>;

inline constexpr double interval = 600;
inline constexpr auto twoHours = 2h;

/// A life of the program that follows a path.
class Life {
public:
    explicit Life(bool hadAFirstRun) {
        if (hadAFirstRun) {
            _desktop.hadAFirstRun();
        }
        launch();
    }

    ~Life() {
        _desktop.alertIsUp();
        _desktop.heard();
    }
    Life(const Life&) = delete;
    Life& operator=(const Life&) = delete;

    State state() {
        const bool isReminderFiring = window() == Window::Popup && app->state == AppState::Reminding;
        Timer timer = Timer::None;
        if (_desktop.isTimerPending() && !isReminderFiring) {
            timer = std::any_cast<App::TimerType>(app->systemTimer->userInfo()) == App::TimerType::Timer
                        ? Timer::Work
                        : Timer::Snooze;
        }
        return {.phase = app->state,
                .timer = timer,
                .isOverdue = timer != Timer::None && _due <= _desktop.uptime(),
                .window = window(),
                .isAsleep = _isAsleep,
                .isFirstRun = app->cfg->isFirstRun(),
                .popups = isStored("PopupAlerts"),
                .autoRestart = isStored("AutoRestart"),
                .isPopupTicked =
                    app->popup->alert.suppressionButton()->state == platform::NSSuppressionButton::StateValue::On,
                .formAutoRestart = _formAutoRestart,
                .restsByTheSettings = _rests};
    }

    /// Everything that can happen in `now`.
    static Path possible(const State& now) {
        if (now.isAsleep) {
            return {Deed::Wake, Deed::LosePower};
        }
        Path deeds{Deed::SetClockForth, Deed::SetClockBack, Deed::FallAsleep, Deed::LosePower};
        if (now.timer != Timer::None && !now.isOverdue) {
            deeds.push_back(Deed::WaitUntilDue);
        }
        const auto add = [&](const Path& more) { deeds.insert(deeds.end(), more.begin(), more.end()); };
        switch (now.window) {
        case Window::None:
            add({Deed::Quit, Deed::PickRestart, Deed::PickPopups, Deed::OpenAbout, Deed::OpenSettings});
            break;
        case Window::Popup:
            add({Deed::AnswerRestart, Deed::AnswerSnooze, Deed::TickOrUntick, Deed::Vanish});
            break;
        case Window::About:
            add({Deed::PressButton, Deed::Close});
            break;
        case Window::Settings:
            add({Deed::ConfirmSettings, Deed::ConfirmNonsense, Deed::Close});
            if (!now.popups) {
                deeds.push_back(Deed::FlipAutoRestart);
            }
            break;
        case Window::Error:
            add({Deed::PressButton, Deed::Vanish});
            break;
        }
        return deeds;
    }

    /// Does `deed` and checks what must hold after it.
    void perform(Deed deed) {
        const double deadline = _desktop.deadline();
        _desktop.published();
        carryOut(deed);
        noteSchedule();
        checkDeadline(deadline);
        checkThatNothingIsStuck();
    }

private:
    void launch() {
        _desktop.launch();
        _formAutoRestart = isStored("AutoRestart");
        _rests = false;
        noteSchedule();
    }

    bool isStored(const std::string& key) const { return std::get<bool>(_desktop.defaults.at(key)); }

    Window window() {
        if (_desktop.alertIsUp()) {
            return _desktop.alert().messageText == "Oops" ? Window::Error : Window::Popup;
        }
        if (_desktop.panelIsUp()) {
            return _desktop.panelLines().size() == 6 ? Window::Settings : Window::About;
        }
        return Window::None;
    }

    void carryOut(Deed deed) {
        switch (deed) {
        case Deed::WaitUntilDue:
            waitUntilDue();
            break;
        case Deed::SetClockForth:
            _desktop.setClockForth(twoHours);
            break;
        case Deed::SetClockBack:
            _desktop.setClockForth(-twoHours);
            break;
        case Deed::FallAsleep:
            _desktop.setClockForth(twoHours); // all of the night
            _isAsleep = true;
            break;
        case Deed::Wake:
            _isAsleep = false;
            _desktop.sleepAndWake();
            break;
        case Deed::LosePower:
            _isAsleep = false;
            _desktop.losePower();
            launch();
            break;
        case Deed::Quit:
            _desktop.pick("Quit");
            launch();
            break;
        case Deed::PickRestart:
            _desktop.pick("Restart timer");
            break;
        case Deed::PickPopups:
            _desktop.pick("Popup reminders");
            break;
        case Deed::OpenAbout:
            _desktop.pick("About Marvelode Timer");
            break;
        case Deed::OpenSettings:
            _desktop.pick("Settings");
            break;
        case Deed::FlipAutoRestart:
            flipAutoRestart();
            break;
        case Deed::ConfirmSettings:
            confirm("10");
            break;
        case Deed::ConfirmNonsense:
            confirm("0");
            break;
        case Deed::PressButton:
            _desktop.click("OK");
            break;
        case Deed::Close:
            _desktop.closeWindow();
            break;
        case Deed::AnswerRestart:
            _desktop.click("Restart");
            break;
        case Deed::AnswerSnooze:
            _desktop.click("Snooze");
            break;
        case Deed::TickOrUntick:
            tickOrUntick();
            break;
        case Deed::Vanish:
            _desktop.makeAlertVanish();
            break;
        }
    }

    /// Comes to the moment at which the timer falls due; if no window is up, something must happen then.
    void waitUntilDue() {
        const bool isWindowUp = window() != Window::None;
        const auto timer = app->systemTimer;
        _desktop.heard();
        _desktop.wait(_due - _desktop.uptime());
        if (!isWindowUp) {
            const bool hasReminded = !_desktop.heard().empty();
            EXPECT_TRUE(hasReminded || app->state == AppState::Timing) << "the timer ended and nothing happened";
        } else {
            EXPECT_EQ(app->systemTimer, timer) << "the timer fired behind a window";
        }
    }

    void flipAutoRestart() {
        if (_formAutoRestart) {
            _desktop.untick("Auto restart timer");
        } else {
            _desktop.tick("Auto restart timer");
        }
        _formAutoRestart = !_formAutoRestart;
    }

    void confirm(const std::string& minutes) {
        _desktop.type(minutes);
        _desktop.click("OK");
    }

    void tickOrUntick() {
        if (app->popup->alert.suppressionButton()->state == platform::NSSuppressionButton::StateValue::On) {
            _desktop.untick("Disable popup notifications");
        } else {
            _desktop.tick("Disable popup notifications");
        }
    }

    /// Remembers when a timer falls due that was scheduled just now.
    void noteSchedule() {
        if (app->systemTimer != _timer) {
            _timer = app->systemTimer;
            _due = _desktop.uptime() + std::chrono::seconds{static_cast<int>(_timer->interval())};
        }
    }

    /// The deadline moves when an interval begins, and at no other time.
    void checkDeadline(double before) {
        const Lines published = _desktop.published();
        const bool hasRestarted = std::any_of(published.begin(), published.end(), [](const std::string& event) {
            return event.ends_with(" to Timing");
        });
        const double now = _desktop.now().timeIntervalSince1970();
        EXPECT_EQ(_desktop.deadline(), hasRestarted ? now + interval : before);
    }

    /// A reminder is ahead or on screen, unless the user wants neither popups nor the automatic restart.
    void checkThatNothingIsStuck() {
        const State now = state();
        EXPECT_NE(now.phase, AppState::Init);
        if (now.phase == AppState::Timing) {
            EXPECT_EQ(now.timer, Timer::Work);
            _rests = false;
            return;
        }
        EXPECT_NE(now.timer, Timer::Work);
        if (now.window == Window::Popup) {
            EXPECT_EQ(now.timer, Timer::None);
        } else if (now.timer == Timer::None && !_rests) {
            EXPECT_FALSE(now.popups || now.autoRestart) << "the cycle stopped and the settings do not say so";
            _rests = true;
        }
    }

    story::StoryDesktop _desktop;
    bool _isAsleep = false;
    bool _formAutoRestart = false;
    bool _rests = false;
    std::shared_ptr<platform::Timer> _timer;
    TimerQueue::Instant _due{};
};

} // namespace models
