#include "alerts/UXAudio.hpp"

#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using Sound = Cfg::Sound;
using platform::simulated::LogEntry;

class TheSoundPlayer : public Bench {
protected:
    static Lines loaded(const UXAudio& audio) {
        Lines names;
        for (const auto& [sound, file] : audio.loadedSounds) {
            EXPECT_TRUE(file);
            names.emplace_back(Cfg::rawValue(sound));
        }
        return names;
    }

    /// The messages logged, which must have been printed too.
    Lines errors() {
        Lines messages;
        for (const LogEntry& entry : desktop.logged()) {
            messages.push_back(entry.message);
        }
        EXPECT_EQ(desktop.printed(), messages);
        return messages;
    }
};

TEST_F(TheSoundPlayer, LoadsAllSoundsButTheSystems) {
    const UXAudio audio{makeCfg()};
    EXPECT_EQ(loaded(audio), soundNames(false));
    EXPECT_EQ(errors(), Lines{});
}

TEST_F(TheSoundPlayer, PlaysWhatItIsAskedFor) {
    const UXAudio audio{makeCfg()};
    audio.play(Sound::Sonar);
    audio.play(Sound::Bowl);
    audio.play(Sound::Whistle);
    EXPECT_EQ(desktop.heard(), (Lines{"Sonar", "Bowl", "Whistle"}));
}

TEST_F(TheSoundPlayer, BeepsForTheSystemsSoundAndNeverLooksForItsFile) {
    desktop.resources["System.m4a"] = SoundFile{};
    const UXAudio audio{makeCfg()};
    audio.play(Sound::System);
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
    EXPECT_EQ(desktop.lookedUp().size(), soundNames(false).size());
    EXPECT_FALSE(desktop.lookedUp().contains("System.m4a"));
}

TEST_F(TheSoundPlayer, NotifiesWithTheChosenSound) {
    const UXAudio audio{makeCfg()};
    desktop.defaults["AlertSound"] = "Bowl"s;
    audio.playNotification();
    desktop.defaults["AlertSound"] = "Sonar"s;
    audio.playNotification();
    EXPECT_EQ(desktop.heard(), (Lines{"Bowl", "Sonar"}));
}

TEST_F(TheSoundPlayer, NotifiesWithTheBeepWhenNoneIsChosen) {
    UXAudio{makeCfg()}.playNotification();
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST_F(TheSoundPlayer, NotifiesWithTheBeepWhenTheChosenSoundIsUnknown) {
    desktop.defaults["AlertSound"] = "Gong"s;
    UXAudio{makeCfg()}.playNotification();
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST_F(TheSoundPlayer, NotifiesSilentlyButStillPlaysWhenMuted) {
    desktop.defaults["Mute"] = true;
    for (const std::string sound : {"Bowl", "System"}) {
        desktop.defaults["AlertSound"] = sound;
        UXAudio{makeCfg()}.playNotification();
        EXPECT_EQ(desktop.heard(), Lines{});
    }
    UXAudio{makeCfg()}.play(Sound::Bowl);
    UXAudio{makeCfg()}.play(Sound::System);
    EXPECT_EQ(desktop.heard(), (Lines{"Bowl", "beep"}));
}

TEST_F(TheSoundPlayer, LogsAMissingFileOnceAndBeepsInstead) {
    desktop.resources.erase("Bowl.m4a");
    const UXAudio audio{makeCfg()};
    EXPECT_EQ(errors(), Lines{"Failed to initialize custom audio: Invalid URL to audio file"});
    Lines others = soundNames(false);
    std::erase(others, "Bowl");
    EXPECT_EQ(loaded(audio), others);
    audio.play(Sound::Bowl);
    audio.play(Sound::Bowl);
    EXPECT_EQ(desktop.heard(), (Lines{"beep", "beep"}));
    EXPECT_EQ(errors(), Lines{});
}

TEST_F(TheSoundPlayer, LogsAFileThatIsNoSoundAndBeepsInstead) {
    desktop.resources["Bowl.m4a"] = TextFile{"no sound"};
    const UXAudio audio{makeCfg()};
    EXPECT_EQ(errors(), Lines{"Failed to initialize custom audio: Could not find sound file for Bowl"});
    audio.play(Sound::Bowl);
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST_F(TheSoundPlayer, LoadsTheSoundsInTheirOrder) {
    Lines messages;
    for (const std::string& name : soundNames(false)) {
        desktop.resources[name + ".m4a"] = TextFile{"no sound"};
        messages.push_back("Failed to initialize custom audio: Could not find sound file for " + name);
    }
    const UXAudio audio{makeCfg()};
    EXPECT_EQ(errors(), messages);
}

TEST_F(TheSoundPlayer, BeepsForEverythingWhenAllFilesAreMissing) {
    desktop.resources.clear();
    const UXAudio audio{makeCfg()};
    EXPECT_EQ(errors(),
              Lines(soundNames(false).size(), "Failed to initialize custom audio: Invalid URL to audio file"));
    EXPECT_TRUE(audio.loadedSounds.empty());
    for (const Sound sound : Cfg::allSounds) {
        audio.play(sound);
    }
    EXPECT_EQ(desktop.heard(), Lines(Cfg::allSounds.size(), "beep"));
}

TEST_F(TheSoundPlayer, DoesNotNoticeAFileAddedLater) {
    desktop.resources.erase("Bowl.m4a");
    const UXAudio audio{makeCfg()};
    errors();
    desktop.resources["Bowl.m4a"] = SoundFile{};
    audio.play(Sound::Bowl);
    EXPECT_EQ(desktop.heard(), Lines{"beep"});
}

TEST_F(TheSoundPlayer, DoesNotMindASoundThatIsPlayingAlready) {
    const UXAudio audio{makeCfg()};
    audio.play(Sound::Bowl);
    audio.play(Sound::Bowl);
    EXPECT_EQ(desktop.heard(), Lines{"Bowl"}); // no beep instead
}

} // namespace
} // namespace bench
