// The helper program that plays one sound and ends: `marvelode-timer-sound play FILE [VOLUME]` or
// `marvelode-timer-sound beep [VOLUME]`, with a volume from 0 to 1. A failure leaves one plain sentence as the last
// line of standard error, and status 1.

#include "platform/linux/sound/helper/Loudspeaker.hpp"

#include <sys/prctl.h>

#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string_view>

namespace {

/// Nothing if the text is no volume. Without a text, it is the full one.
std::optional<double> volumeIn(const char* text) {
    char* end = nullptr;
    const double volume = text ? std::strtod(text, &end) : 1;
    const bool isNumber = !text || (end != text && *end == '\0');
    return isNumber && volume >= 0 && volume <= 1 ? std::optional{volume} : std::nullopt;
}

void play(sound::Sound sound, double volume) {
    for (std::int16_t& sample : sound.samples) {
        sample = static_cast<std::int16_t>(std::lround(sample * volume));
    }
    sound::play(sound);
}

void beep(double volume) {
    try {
        sound::playThemed("bell", volume);
    } catch (const sound::Failure&) {
        play(sound::tone(), volume);
    }
}

int run(int argc, char** argv) {
    const std::string_view verb = argc > 1 ? argv[1] : "";
    const int words = verb == "play" ? 3 : 2;
    const std::optional<double> volume = volumeIn(argc > words ? argv[words] : nullptr);
    if ((verb != "play" && verb != "beep") || argc < words || argc > words + 1 || !volume) {
        std::cerr << "Usage: marvelode-timer-sound play FILE [VOLUME] | beep [VOLUME]\n";
        return 2;
    }
    try {
        if (*volume == 0) {
            return 0;
        }
        if (verb == "play") {
            play(sound::decode(argv[2]), *volume);
        } else {
            beep(*volume);
        }
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    prctl(PR_SET_NAME, "marvelode-timer-sound"); // the system would call it by the number of its open file
    // A sound does not outlive the program that asked for it.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // Threads of the sound libraries may still be running: nothing is destroyed under their feet.
    std::quick_exit(run(argc, argv));
}
