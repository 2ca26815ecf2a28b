#include "platform/linux/sound/helper/Sound.hpp"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace sound {

Sound tone() {
    constexpr std::uint32_t samplesPerSecond = 44'100;
    constexpr double seconds = 0.4;
    constexpr double hertz = 880;
    constexpr double attack = 0.01;
    constexpr double decay = 0.08;
    constexpr double loudest = 16'000;

    Sound sound{.samplesPerSecond = samplesPerSecond, .channels = 1, .samples = {}};
    for (int index = 0; index < seconds * samplesPerSecond; ++index) {
        const double time = static_cast<double>(index) / samplesPerSecond;
        const double envelope = std::min(time / attack, 1.0) * std::exp(-time / decay);
        const double wave = std::sin(2 * std::numbers::pi * hertz * time);
        sound.samples.push_back(static_cast<std::int16_t>(loudest * envelope * wave));
    }
    return sound;
}

} // namespace sound
