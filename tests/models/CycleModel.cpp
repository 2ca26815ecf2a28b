#include "tests/models/CycleModel.hpp"

#include <algorithm>

namespace models {
namespace {

using platform::DefaultsValue;

const char* nameOf(AppState state) {
    return state == AppState::Init ? "Init" : state == AppState::Timing ? "Timing" : "Reminding";
}

std::string textFor(Milliseconds remaining) {
    const bool isOver = remaining < 0;
    const Milliseconds span = isOver ? -remaining : remaining;
    const Milliseconds threshold = isOver ? 60'000 : 10'000; // below it seconds, above it minutes, at it nothing
    std::string text = isOver ? "+" : "";
    if (span > 3'600'000) {
        text += ">" + std::to_string(span / 3'600'000) + "h";
    } else if (span > threshold) {
        text += std::to_string(span / 60'000 + (isOver ? 0 : 1)) + "m";
    } else if (span < threshold) {
        text += std::to_string(span / 1000);
    }
    return text;
}

std::string withValue(const std::string& name, bool value) { return name + (value ? " true" : " false"); }

} // namespace

// Settings

bool CycleModel::flag(const std::string& key) const {
    return stored.contains(key) && std::get<bool>(stored.at(key));
}

bool CycleModel::flagWithDefault(const std::string& key) {
    if (_isFirstRun) {
        stored[key] = true;
    }
    return flag(key);
}

std::int64_t CycleModel::interval() const {
    const auto seconds = stored.contains("TimerInterval")
                             ? static_cast<std::int64_t>(std::get<double>(stored.at("TimerInterval")))
                             : 0;
    return seconds == 0 ? 600 : seconds;
}

void CycleModel::write(const std::string& key, const DefaultsValue& value, const std::string& announcement) {
    stored[key] = value;
    announce(announcement);
}

void CycleModel::announce(const std::string& event) {
    published.push_back(event);
    refresh();
    isMuteMarked = flag("Mute");
}

// Time

void CycleModel::launch() {
    state = AppState::Init;
    isAlertUp = isTicked = _isPanelUp = false;
    title.clear();
    isTitleRed = false;
    published.clear();
    _playingUntil.clear();
    _isFirstRun = !stored.contains("Version");
    stored["Version"] = std::string{"1.2.0"};
    _formMinutes = interval() / 60;
    _formSound = stored.contains("AlertSound") ? std::get<std::string>(stored.at("AlertSound")) : "System";
    _formRestartOnWake = flagWithDefault("ResartOnWake");
    _formAutoRestart = flagWithDefault("AutoRestart");
    isMuteMarked = flag("Mute");
    isPopupsMarked = flagWithDefault("PopupAlerts");
    _nextTick = _now + 1000;
    restart();
}

void CycleModel::wait(Milliseconds span) { goTo(_now + span); }

/// Goes through all that happens by itself until then.
void CycleModel::goTo(Milliseconds instant) {
    for (;;) {
        const bool isModal = isAlertUp || _isPanelUp;
        const bool ticks = !isModal || _policy == platform::RepeatingTimersDuringModal::Fire;
        const bool fires = !isModal && _timer && _timer->due <= instant;
        if (ticks && _nextTick <= (fires ? _timer->due : instant)) {
            const Milliseconds until = fires ? _timer->due : instant;
            const Milliseconds missed = std::max<Milliseconds>(0, _now - _nextTick) / 1000;
            _nextTick += missed * 1000; // a late tick comes once
            if (_nextTick > _now) {
                _nextTick +=
                    std::max<Milliseconds>(0, until - _nextTick) / 1000 * 1000; // only the last one is seen
            }
            _now = std::max(_now, _nextTick);
            _nextTick += 1000;
            refresh();
        } else if (fires) {
            _now = std::max(_now, _timer->due);
            const Kind kind = _timer->kind;
            _timer.reset();
            fire(kind);
        } else {
            _now = std::max(_now, instant);
            return;
        }
    }
}

void CycleModel::refresh() {
    if (state == AppState::Init || !flagWithDefault("ShowCountdown")) {
        return;
    }
    title = textFor(_deadline - wall());
    isTitleRed = state == AppState::Reminding || title == "0";
}

// The break cycle

void CycleModel::restart() {
    _timer = Pending{_now + interval() * 1000, Kind::Work};
    _deadline = wall() + interval() * 1000;
    const AppState before = state;
    state = AppState::Timing;
    announce(std::string{nameOf(before)} + " to Timing");
}

void CycleModel::fire(Kind kind) {
    if (kind == Kind::Work) {
        state = AppState::Reminding;
        announce("Timing to Reminding");
        remind(kind);
    } else if (flagWithDefault("PopupAlerts") || !flagWithDefault("AutoRestart")) {
        remind(kind);
    } else {
        restart();
    }
}

void CycleModel::remind(Kind kind) {
    if (!flag("Mute")) {
        play(stored.contains("AlertSound") ? std::get<std::string>(stored.at("AlertSound")) : "System");
    }
    if (flagWithDefault("PopupAlerts")) {
        isAlertUp = true;
        _reminderOf = kind;
    } else {
        afterReminder(kind);
    }
}

void CycleModel::answer(bool isRestart) {
    isAlertUp = false;
    if (isTicked) {
        write("PopupAlerts", false, "PopupAlerts false");
    }
    if (isRestart) {
        restart();
    } else if (state == AppState::Reminding) {
        _timer = Pending{_now + 60'000, Kind::Snooze};
    }
    afterReminder(_reminderOf);
    goTo(_now);
}

void CycleModel::afterReminder(Kind kind) {
    if (kind == Kind::Work && !flagWithDefault("PopupAlerts") && flagWithDefault("AutoRestart")) {
        restart();
    }
}

void CycleModel::play(const std::string& sound) {
    if (sound == "System") {
        heard.emplace_back("beep");
    } else if (_playingUntil[sound] <= _now) {
        heard.push_back(sound);
        _playingUntil[sound] = _now + 2000;
    }
}

void CycleModel::wake(Milliseconds asleep) {
    _clock += asleep;
    restart();
    goTo(_now);
}

// The menu

void CycleModel::pickRestart() {
    published.emplace_back("Restart");
    refresh();
    restart();
    goTo(_now);
}

void CycleModel::pickMute() {
    const bool muted = !flag("Mute");
    write("Mute", muted, withValue("Mute", muted));
    goTo(_now);
}

void CycleModel::pickPopups() {
    const bool enabled = !flagWithDefault("PopupAlerts");
    write("PopupAlerts", enabled, withValue("PopupAlerts", enabled));
    isPopupsMarked = flagWithDefault("PopupAlerts");
    goTo(_now);
}

void CycleModel::pickQuit() {
    published.emplace_back("Terminate");
    refresh();
}

void CycleModel::closeAbout() {
    _isPanelUp = false;
    goTo(_now);
}

// The settings form

void CycleModel::openSettings() {
    _isPanelUp = true;
    isAutoRestartOffered = !flagWithDefault("PopupAlerts");
}

void CycleModel::enter(const Entries& entries) {
    if (entries.minutes) {
        _formMinutes = *entries.minutes;
    }
    if (entries.sound != _formSound) {
        _formSound = entries.sound;
        play(_formSound);
    }
    _formRestartOnWake ^= entries.flipsRestartOnWake;
    _formAutoRestart ^= entries.flipsAutoRestart;
}

bool CycleModel::confirm() {
    write("AlertSound", _formSound, "AlertSound " + _formSound);
    write("ResartOnWake", _formRestartOnWake, withValue("RestartOnWake", _formRestartOnWake));
    write("AutoRestart", _formAutoRestart, withValue("AutoRestart", _formAutoRestart));
    if (_formMinutes < 1 || _formMinutes > 120) {
        return false;
    }
    const std::int64_t seconds = _formMinutes * 60;
    stored["TimerInterval"] = static_cast<double>(seconds);
    published.push_back("TimerInterval " + std::to_string(seconds));
    refresh();
    restart();
    closeSettings();
    return true;
}

void CycleModel::closeSettings() {
    _isPanelUp = false;
    isMuteMarked = flag("Mute");
    goTo(_now);
}

} // namespace models
