#pragma once

// Sounds: files that play while the program goes on, and the desktop's own alert beep.

#include <filesystem>
#include <memory>

namespace platform {

/// A sound file that can be played any number of times.
class NSSound {
public:
    /// The sound in the file at `url`; null if it cannot be opened as a sound. By reference: the file is read
    /// when it is played.
    static std::shared_ptr<NSSound> contentsOf(const std::filesystem::path& url, bool byReference);

    /// The desktop's standard alert sound.
    static void beep();

    explicit NSSound(std::filesystem::path url)
        : url{std::move(url)} {}

    const std::filesystem::path url;

    /// Starts playing and returns at once; false if the sound is playing already.
    bool play();
};

} // namespace platform
