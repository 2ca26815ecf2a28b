#include "config/Cfg.hpp"

#include "app/Events.hpp"
#include "platform/Fatal.hpp"
#include "platform/UserDefaults.hpp"

#include <array>
#include <cstddef>
#include <string>
#include <utility>

namespace marvelode {
namespace {

constexpr platform::TimeInterval defaultInterval = 600;
constexpr platform::TimeInterval longestInterval = 7200;

platform::UserDefaults& defaults() { return platform::UserDefaults::standard(); }

} // namespace

std::string_view Cfg::rawValue(Sound sound) {
    static constexpr std::array<std::string_view, allSounds.size()> names{MARVELODE_SOUNDS(MARVELODE_SOUND_NAME)};
    const auto index = static_cast<std::size_t>(sound);
    if (index >= names.size()) {
        platform::fatal();
    }
    return names[index];
}

std::optional<Cfg::Sound> Cfg::soundFromRawValue(std::string_view name) {
    for (const Sound sound : allSounds) {
        if (rawValue(sound) == name) {
            return sound;
        }
    }
    return std::nullopt;
}

Cfg::Cfg(bool isTest, std::shared_ptr<Events> events, std::shared_ptr<BuildInfo> buildInfo)
    : isTest{isTest}
    , events{std::move(events)}
    , buildInfo{std::move(buildInfo)} {}

bool Cfg::isFirstRun() {
    if (!firstRun) {
        firstRun = !defaults().stringForKey(Key::Version);
        defaults().set(buildInfo->version, Key::Version);
    }
    return *firstRun;
}

platform::TimeInterval Cfg::timerInterval() const {
    if (isTest) {
        return 30;
    }
    const auto stored = defaults().integerForKey(Key::TimerInterval);
    return stored == 0 ? defaultInterval : static_cast<platform::TimeInterval>(stored);
}

platform::TimeInterval Cfg::reminderInterval() const { return isTest ? 5 : 60; }

bool Cfg::isMuted() const { return defaults().boolForKey(Key::Mute); }

bool Cfg::popups() { return firstRunDefaulted(Key::PopupAlerts); }

bool Cfg::autoRestart() { return firstRunDefaulted(Key::AutoRestart); }

bool Cfg::restartOnWake() { return firstRunDefaulted(Key::RestartOnWake); }

bool Cfg::showCountdown() { return firstRunDefaulted(Key::ShowCountdown); }

Cfg::Sound Cfg::sound() const {
    const std::optional<std::string> stored = defaults().stringForKey(Key::AlertSound);
    return soundFromRawValue(stored.value_or("System")).value_or(Sound::System);
}

bool Cfg::setTimerInterval(platform::TimeInterval seconds) {
    const bool isAccepted = seconds > 0 && seconds <= longestInterval;
    if (!isAccepted) {
        return false;
    }
    defaults().set(seconds, Key::TimerInterval);
    events->publish({Event::cfgChange{{Parameter::TimerInterval{seconds}}}});
    return true;
}

bool Cfg::toggleMute() {
    const bool muted = !isMuted();
    defaults().set(muted, Key::Mute);
    events->publish({Event::cfgChange{{Parameter::Mute{muted}}}});
    return muted;
}

bool Cfg::togglePopups() {
    const bool enabled = !popups();
    defaults().set(enabled, Key::PopupAlerts);
    events->publish({Event::cfgChange{{Parameter::PopupAlerts{enabled}}}});
    return popups();
}

void Cfg::disablePopups() {
    defaults().set(false, Key::PopupAlerts);
    events->publish({Event::cfgChange{{Parameter::PopupAlerts{false}}}});
}

bool Cfg::firstRunDefaulted(std::string_view key) {
    if (isFirstRun()) {
        defaults().set(true, key);
    }
    return defaults().boolForKey(key);
}

} // namespace marvelode
