#pragma once

// The settings form. Edits stay in the form until OK saves them all. Copies share what the user entered, which
// stays from one showing to the next.

#include "alerts/UXAudio.hpp"
#include "config/Cfg.hpp"
#include "platform/View.hpp"

#include <cstdint>
#include <functional>
#include <memory>

namespace marvelode {

class SettingsView {
public:
    /// Reads the settings once, for the initial values.
    SettingsView(std::shared_ptr<Cfg> cfg, std::shared_ptr<UXAudio> audio);

    /// The form's tree. Stops the program if the stored interval is negative.
    platform::View body() const;

    platform::State<std::int64_t> _timerIntervalMinutes;
    platform::State<Cfg::Sound> _selectedSound;
    platform::State<bool> _restartOnWake;
    platform::State<bool> _autoRestart;
    std::shared_ptr<Cfg> cfg;
    std::shared_ptr<UXAudio> audio;
    static constexpr auto sounds = Cfg::allSounds;
    std::function<void()> _done = [] {};

private:
    /// Saves and announces the form and calls `_done`; an interval that is refused is reported to the user
    /// and leaves the window open, with everything else saved.
    void update() const;
};

} // namespace marvelode
