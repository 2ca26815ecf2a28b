#pragma once

// The user's settings, read from and written to the desktop's store at each call: nothing is remembered here. Every
// change is published on the bus once it is stored.

#include "config/BuildInfo.hpp"
#include "platform/Date.hpp"

#include <array>
#include <memory>
#include <optional>
#include <string_view>
#include <variant>

/// The one list of the alert sounds, in the order in which they are offered. A sound is added here, and as a file
/// of its name in `resources/`.
#define MARVELODE_SOUNDS(each) each(Sonar) each(Bowl) each(System) each(Whistle)
#define MARVELODE_ENUMERATOR(name) name,
#define MARVELODE_SOUND(name) Sound::name,
#define MARVELODE_SOUND_NAME(name) #name,

namespace marvelode {

class Events;

class Cfg {
public:
    /// The alert sounds. `System` is the desktop's own beep; each of the others has a file among the resources.
    enum class Sound { MARVELODE_SOUNDS(MARVELODE_ENUMERATOR) };

    /// All sounds in the order in which they are offered.
    static constexpr std::array allSounds{MARVELODE_SOUNDS(MARVELODE_SOUND)};

    /// The sound's name, under which it is stored and shown.
    static std::string_view rawValue(Sound sound);

    /// The sound of exactly that name; nothing for any other text.
    static std::optional<Sound> soundFromRawValue(std::string_view name);

    /// A setting together with its new value.
    struct Parameter {
        struct AlertSound {
            Sound value;
            bool operator==(const AlertSound&) const = default;
        };

        struct AutoRestart {
            bool value;
            bool operator==(const AutoRestart&) const = default;
        };

        struct Mute {
            bool value;
            bool operator==(const Mute&) const = default;
        };

        struct PopupAlerts {
            bool value;
            bool operator==(const PopupAlerts&) const = default;
        };

        struct RestartOnWake {
            bool value;
            bool operator==(const RestartOnWake&) const = default;
        };

        struct ShowCountdown {
            bool value;
            bool operator==(const ShowCountdown&) const = default;
        };

        struct TimerInterval {
            platform::TimeInterval value;
            bool operator==(const TimerInterval&) const = default;
        };

        std::variant<AlertSound, AutoRestart, Mute, PopupAlerts, RestartOnWake, ShowCountdown, TimerInterval>
            change;
        bool operator==(const Parameter&) const = default;
    };

    /// The keys under which the settings are stored.
    struct Key {
        static constexpr std::string_view TimerInterval = "TimerInterval"; ///< A double, in seconds.
        static constexpr std::string_view Mute = "Mute";
        static constexpr std::string_view PopupAlerts = "PopupAlerts";
        static constexpr std::string_view AutoRestart = "AutoRestart";
        static constexpr std::string_view RestartOnWake = "ResartOnWake"; ///< Spelt so in every user's settings.
        static constexpr std::string_view ShowCountdown = "ShowCountdown";
        static constexpr std::string_view AlertSound = "AlertSound"; ///< A sound's name.
        static constexpr std::string_view Version = "Version";       ///< The version that ran last.
    };

    Cfg(bool isTest, std::shared_ptr<Events> events, std::shared_ptr<BuildInfo> buildInfo);

    /// Whether no version had recorded itself before this process did; the same answer for the life of the
    /// process.
    bool isFirstRun();

    /// The work interval in whole seconds: the stored one, 600 if that is 0 or absent; 30 in test mode.
    platform::TimeInterval timerInterval() const;

    /// The snooze interval in seconds: 60, 5 in test mode.
    platform::TimeInterval reminderInterval() const;

    bool isMuted() const;

    // During a first run the following four read as true and write that, at every call.
    bool popups();
    bool autoRestart();
    bool restartOnWake();
    bool showCountdown();

    /// The stored sound; `System` if there is none of that name.
    Sound sound() const;

    /// Stores and publishes a work interval of more than 0 and at most 7200 seconds; otherwise changes
    /// nothing and returns false. Fractions are stored, but not read back.
    bool setTimerInterval(platform::TimeInterval seconds);

    /// Returns the new value.
    bool toggleMute();

    /// Returns the value that a fresh read finds, which during a first run is true whatever was published.
    bool togglePopups();

    void disablePopups();

private:
    bool firstRunDefaulted(std::string_view key);

    std::optional<bool> firstRun; ///< Absent until `isFirstRun()` is asked.

public:
    const bool isTest;
    const std::shared_ptr<Events> events;
    const std::shared_ptr<BuildInfo> buildInfo;
};

} // namespace marvelode
