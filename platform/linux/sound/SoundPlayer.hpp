#pragma once

// The resident program's side of sounds: it has no decoder and no way to a sound server, so it starts a short-lived
// helper program for each sound and looks after it. A helper's failure is told to the log and delays nothing.

#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/HelperProgram.hpp"

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {

class SoundPlayer {
public:
    /// Plays through `program`, which must outlive this object. `errorLog` gets one sentence for each sound that
    /// could not be heard; it is called on the main thread and may play the next. A helper still there after
    /// `longestSound` is killed.
    SoundPlayer(const HelperProgram& program, ErrorLog& errorLog,
                std::chrono::milliseconds longestSound = std::chrono::seconds{30});

    /// Ends what is playing.
    ~SoundPlayer();

    SoundPlayer(const SoundPlayer&) = delete;
    SoundPlayer& operator=(const SoundPlayer&) = delete;

    /// Whether the file is a sound of the kind that the helper is certain to play: AAC in an MPEG-4 container.
    bool canPlay(const std::filesystem::path& sound) const;

    /// How loud, as the share of a sound's full loudness from 0 to 1; nothing for a sound as it is.
    using Volume = std::optional<double>;

    /// Starts the sound and returns at once; false if it is playing already, its helper cannot be started or the
    /// session is not worth a sound.
    bool play(const std::filesystem::path& sound, Volume volume = {});

    /// Starts the desktop's alert sound and returns at once; does nothing where `play` would return false.
    void beep(Volume volume = {});

private:
    class Helper;

    bool start(std::vector<std::string> arguments, Volume volume, const std::string& description);
    void ended(const Helper& helper, const std::string& complaint);

    const HelperProgram& _program;
    ErrorLog& _errorLog;
    const std::chrono::milliseconds _longestSound;
    std::vector<std::unique_ptr<Helper>> _helpers;
};

} // namespace platform::linux
