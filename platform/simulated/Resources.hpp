#pragma once

// The files in the simulated bundle. A file is what a program can make of it, not its bytes: a picture has a size,
// a sound a length, and a file that pretends to be either is just a text of that name.

#include "platform/NSImage.hpp"

#include <chrono>
#include <functional>
#include <map>
#include <string>
#include <variant>

namespace platform::simulated {

struct TextFile {
    std::string bytes;
};

struct SoundFile {
    std::chrono::nanoseconds length = std::chrono::seconds{2};
};

struct PictureFile {
    NSSize size;
};

/// A file that is there but cannot be read.
struct UnreadableFile {};

using File = std::variant<TextFile, SoundFile, PictureFile, UnreadableFile>;

/// Files by name, extension included.
using Resources = std::map<std::string, File, std::less<>>;

} // namespace platform::simulated
