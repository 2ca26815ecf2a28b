#pragma once

// The alert sounds: loaded once at start-up, played by name. A sound that could not be loaded, and the sound
// called `System`, is the desktop's own beep.

#include "config/Cfg.hpp"
#include "platform/NSSound.hpp"

#include <map>
#include <memory>

namespace marvelode {

class UXAudio {
public:
    /// Loads the sound files; those that fail are logged and left out.
    explicit UXAudio(std::shared_ptr<Cfg> cfg);

    /// Plays the chosen sound unless muted.
    void playNotification() const;

    /// Plays `sound`, muted or not.
    void play(Cfg::Sound sound) const;

    const std::shared_ptr<Cfg> cfg;
    const std::map<Cfg::Sound, std::shared_ptr<platform::NSSound>> loadedSounds; ///< Never holds `System`.

private:
    static std::shared_ptr<platform::NSSound> loadSound(Cfg::Sound sound);
    static std::map<Cfg::Sound, std::shared_ptr<platform::NSSound>> loadSounds();
};

} // namespace marvelode
