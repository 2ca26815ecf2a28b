// What the command line can ask for beside a timer: a program of its own, since the one that runs stays in memory
// for weeks. That one starts this in its own place, under its own name.

#include "platform/linux/Autostart.hpp"
#include "platform/linux/Diagnosis.hpp"
#include "platform/linux/Places.hpp"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using platform::linux::Autostart;
using platform::linux::Places;

/// Tells whether it is on, and before that turns it on or off.
int handleAutostart(const Places& places, const std::string& word) {
    const Autostart autostart = Autostart::ofThisUser(places.resources);
    std::string problem;
    if (word == "on") {
        problem = autostart.turnOn();
    } else if (word == "off") {
        problem = autostart.turnOff();
    } else if (word != "status") {
        std::fputs("marvelode-timer: --autostart takes on, off or status.\n", stderr);
        return EXIT_FAILURE;
    }
    if (!problem.empty()) {
        std::fprintf(stderr, "marvelode-timer: Autostart cannot be turned %s: %s\n", word.c_str(), problem.c_str());
        return EXIT_FAILURE;
    }
    std::puts(autostart.isOn() ? "on" : "off");
    return EXIT_SUCCESS;
}

int printDiagnosis(const Places& places, bool hasMore) {
    if (hasMore) {
        std::fputs("marvelode-timer: --diagnose takes no argument.\n", stderr);
        return EXIT_FAILURE;
    }
    for (const auto& [subject, line] : platform::linux::diagnose(places)) {
        std::printf("%s: %s\n", subject.c_str(), line.c_str());
    }
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view command = argc > 1 ? argv[1] : "";
    if (command != "--autostart" && command != "--diagnose") {
        std::fprintf(stderr,
                     "%s does what the command line asks of Marvelode Timer beside a timer.\n"
                     "To use it, start marvelode-timer.\n",
                     argv[0]);
        return EXIT_FAILURE;
    }
    const Places places = Places::ofProgram(argv[0]);
    return command == "--diagnose" ? printDiagnosis(places, argc > 2)
                                   : handleAutostart(places, argc == 3 ? argv[2] : "");
}
