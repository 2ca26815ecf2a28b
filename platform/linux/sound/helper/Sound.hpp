#pragma once

// A sound as a row of numbers, ready for a loudspeaker, and the two ways to get one. Every failure is
// thrown as a `Failure` whose text is a plain sentence.

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <vector>

namespace sound {

class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Samples of 16 bits; those of one instant, one for each channel, stand beside each other.
struct Sound {
    std::uint32_t samplesPerSecond = 0;
    std::uint16_t channels = 0;
    std::vector<std::int16_t> samples;
};

/// The whole sound in the file at `path`, in any format that the installed decoders know, in one or two channels.
Sound decode(const std::filesystem::path& path);

/// A short, soft tone that needs no file.
Sound tone();

} // namespace sound
