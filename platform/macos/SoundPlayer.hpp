#pragma once

// The sound files that the program plays, each opened once by reference and kept.

#include "platform/macos/Retained.hpp"

#import <AppKit/AppKit.h>

#include <filesystem>
#include <map>

namespace macos {

class SoundPlayer {
public:
    /// Opens the file at `url`, if need be; whether it is a sound.
    bool open(const std::filesystem::path& url);

    /// Starts the sound, opening it if need be; false if it is playing already or is no sound.
    bool play(const std::filesystem::path& url);

private:
    std::map<std::filesystem::path, Retained<NSSound>> _opened;
};

} // namespace macos
