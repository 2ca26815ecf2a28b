#pragma once

// The application object. It builds every other component in a fixed order and keeps it, and it runs the break
// cycle: a work interval, a reminder, and then the next interval or a snooze.

#include "alerts/UXAudio.hpp"
#include "alerts/UXPopup.hpp"
#include "app/AppState.hpp"
#include "app/Events.hpp"
#include "app/MakeShared.hpp"
#include "config/Cfg.hpp"
#include "platform/Date.hpp"
#include "platform/NSApplication.hpp"
#include "platform/NSImage.hpp"
#include "platform/Timer.hpp"
#include "statusbar/UXStatus.hpp"

#include <memory>

namespace marvelode {

class App : public platform::NSApplicationDelegate,
            public platform::UNUserNotificationCenterDelegate,
            public std::enable_shared_from_this<App> {
public:
    using State = AppState;

    /// What the pending timer ends.
    enum class TimerType {
        Timer,    ///< A work interval.
        Reminder, ///< A snooze.
    };

    struct Icon {
        /// The application picture, looked up on first use; a missing one stops the program.
        static const platform::NSImage& image();
    };

    /// Builds all components; schedules, publishes and shows nothing. The components keep the application object
    /// alive from then on.
    static std::shared_ptr<App> create(bool isTest);

    /// For `create()`.
    App(ConstructionKey key, std::shared_ptr<UXAudio> audio, std::shared_ptr<UXPopup> popup,
        std::shared_ptr<Cfg> cfg, std::shared_ptr<Events> events);
    void finishConstruction(ConstructionKey key);

    App() = delete;
    ~App() override;
    App(const App&) = delete;
    App& operator=(const App&) = delete;

    void applicationDidFinishLaunching() override;

    /// Seconds until the current work interval ends; negative once it has ended, also during snoozes.
    platform::TimeInterval countdown() const;

    /// The action of the cycle's timer. Late calls by replaced or invalidated timers do nothing.
    void timeExpired(const std::shared_ptr<platform::Timer>& fired);

    /// A work interval has ended.
    void timerFired();

    /// A snooze has ended.
    void reminderFired();

    void onCfgChange(const Cfg::Parameter& parameter);
    void onUIAction(UIAction action);
    void terminate();

    State state = State::Init;
    platform::Date systemTimerDeadline; ///< When the current work interval ends; a snooze does not move it.
    std::shared_ptr<platform::Timer> systemTimer; ///< The one pending timer; null before the first.
    const std::shared_ptr<UXAudio> audio;
    const std::shared_ptr<UXPopup> popup;
    std::shared_ptr<UXStatus> status; ///< Null only during construction.
    const std::shared_ptr<Cfg> cfg;
    const std::shared_ptr<Events> events;

private:
    void initialize();

    /// Starts a new work interval, of the length stored at this moment.
    void restart();

    /// Replaces the pending timer. Only a work interval moves the deadline.
    void time(platform::TimeInterval interval, TimerType type);

    /// Plays the sound and, if popups are enabled, asks the user and acts on the answer.
    void notify();

    /// Every wake of the machine starts a new work interval, whatever the settings say.
    void didWakeFromSleep();
};

} // namespace marvelode
