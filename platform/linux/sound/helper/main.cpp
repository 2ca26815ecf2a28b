// The helper program that plays one sound and ends: `marvelode-timer-sound play FILE` or `marvelode-timer-sound
// beep`. A failure leaves one plain sentence as the last line of standard error, and status 1.

#include "platform/linux/sound/helper/Loudspeaker.hpp"

#include <sys/prctl.h>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <string_view>

namespace {

void beep() {
    try {
        sound::playThemed("bell");
    } catch (const sound::Failure&) {
        sound::play(sound::tone());
    }
}

int run(int argc, char** argv) {
    const std::string_view verb = argc > 1 ? argv[1] : "";
    try {
        if (verb == "play" && argc == 3) {
            sound::play(sound::decode(argv[2]));
        } else if (verb == "beep" && argc == 2) {
            beep();
        } else {
            std::cerr << "Usage: marvelode-timer-sound play FILE | beep\n";
            return 2;
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
