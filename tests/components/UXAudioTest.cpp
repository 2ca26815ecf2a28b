#include "alerts/UXAudio.hpp"

#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using Sound = Cfg::Sound;
using platform::simulated::LogEntry;

class TheSoundPlayer : public Bench {
protected:
    std::vector<Sound> loaded(const UXAudio& audio) const {
        std::vector<Sound> sounds;
        for (const auto& [sound, file] : audio.loadedSounds) {
            EXPECT_TRUE(file);
            sounds.push_back(sound);
        }
        return sounds;
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
    EXPECT_EQ(loaded(audio), (std::vector{Sound::Sonar, Sound::Bowl, Sound::Whistle}));
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
    EXPECT_EQ(desktop.lookedUp(), (std::set<std::string>{"Sonar.m4a", "Bowl.m4a", "Whistle.m4a"}));
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
    EXPECT_EQ(loaded(audio), (std::vector{Sound::Sonar, Sound::Whistle}));
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
    for (const char* name : {"Whistle.m4a", "Sonar.m4a", "Bowl.m4a"}) {
        desktop.resources[name] = TextFile{"no sound"};
    }
    const UXAudio audio{makeCfg()};
    const std::string message = "Failed to initialize custom audio: Could not find sound file for ";
    EXPECT_EQ(errors(), (Lines{message + "Sonar", message + "Bowl", message + "Whistle"}));
}

TEST_F(TheSoundPlayer, BeepsForEverythingWhenAllFilesAreMissing) {
    for (const char* name : {"Sonar.m4a", "Bowl.m4a", "Whistle.m4a"}) {
        desktop.resources.erase(name);
    }
    const UXAudio audio{makeCfg()};
    const std::string message = "Failed to initialize custom audio: Invalid URL to audio file";
    EXPECT_EQ(errors(), (Lines{message, message, message}));
    EXPECT_TRUE(audio.loadedSounds.empty());
    for (const Sound sound : Cfg::allSounds) {
        audio.play(sound);
    }
    EXPECT_EQ(desktop.heard(), (Lines{"beep", "beep", "beep", "beep"}));
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
