#include "alerts/UXAudio.hpp"

#include "app/Err.hpp"
#include "app/Log.hpp"
#include "platform/Bundle.hpp"

#include <string>
#include <utility>

namespace marvelode {

using platform::NSSound;

UXAudio::UXAudio(std::shared_ptr<Cfg> cfg)
    : cfg{std::move(cfg)}
    , loadedSounds{loadSounds()} {}

std::map<Cfg::Sound, std::shared_ptr<NSSound>> UXAudio::loadSounds() {
    std::map<Cfg::Sound, std::shared_ptr<NSSound>> sounds;
    for (const Cfg::Sound sound : Cfg::allSounds) {
        if (sound == Cfg::Sound::System) {
            continue;
        }
        if (auto loaded = loadSound(sound)) {
            sounds.emplace(sound, std::move(loaded));
        }
    }
    return sounds;
}

std::shared_ptr<NSSound> UXAudio::loadSound(Cfg::Sound sound) {
    const std::string_view name = Cfg::rawValue(sound);
    try {
        const auto url = platform::Bundle::main().url(name, "m4a");
        if (!url) {
            throw Err{"Invalid URL to audio file"};
        }
        auto loaded = NSSound::contentsOf(*url, true);
        if (!loaded) {
            throw Err{std::string{"Could not find sound file for "}.append(name)};
        }
        return loaded;
    } catch (const Err& error) {
        Log::error("Failed to initialize custom audio: " + error.description());
        return nullptr;
    }
}

void UXAudio::playNotification() const {
    if (!cfg->isMuted()) {
        play(cfg->sound());
    }
}

void UXAudio::play(Cfg::Sound sound) const {
    if (const auto loaded = loadedSounds.find(sound); loaded != loadedSounds.end()) {
        loaded->second->play();
    } else {
        NSSound::beep();
    }
}

} // namespace marvelode
