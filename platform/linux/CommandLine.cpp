#include "platform/linux/CommandLine.hpp"

#include "config/Cfg.hpp"
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

constexpr const char* help =
    R"(Usage: marvelode-timer [-test] [-KEY VALUE]...

Reminds you of a short break every few minutes, from an icon in the panel.

  -test       a work interval of 30 seconds and a snooze of 5, if given alone
  --help      show this text
  --version   show the version
  --diagnose  show what a report of a fault should tell

  --autostart on|off|status   whether the desktop starts it

Settings for this run, ahead of those that are stored:

  -TimerInterval SECONDS      the length of a work interval
  -Mute true|false            reminders come without a sound
  -PopupAlerts true|false     a window announces the break
  -AutoRestart true|false     without a window, the next interval begins by itself
  -ResartOnWake true|false    kept for the settings window
  -ShowCountdown true|false   the time beside the icon is kept up to date
)";

/// Prints the text above, from which the shells complete options and values, and the last setting with its values.
void printHelp() {
    std::fputs(help, stdout);
    const char* before = "  -AlertSound ";
    for (const auto sound : marvelode::Cfg::allSounds) {
        std::printf("%s%s", before, marvelode::Cfg::rawValue(sound).data());
        before = "|";
    }
    std::puts("   the sound of a reminder");
}

/// Tells what was found, or else turns the autostart on or off.
int handleAutostart(std::string_view word) {
    const Autostart autostart = Autostart::ofThisUser(Places::ofThisProcess().resources);
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
        std::fprintf(stderr, "marvelode-timer: Autostart cannot be turned %s: %s\n", word.data(), problem.c_str());
        return EXIT_FAILURE;
    }
    std::puts(autostart.isOn() ? "on" : "off");
    return EXIT_SUCCESS;
}

int printDiagnosis() {
    for (const auto& [subject, line] : platform::linux::diagnose(Places::ofThisProcess())) {
        std::printf("%s: %s\n", subject.c_str(), line.c_str());
    }
    return EXIT_SUCCESS;
}

} // namespace

std::optional<int> doWithoutTimer(int argc, const char* const* argv) {
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--autostart") {
        return handleAutostart(argc == 3 ? argv[2] : "");
    }
    if (argc != 2) {
        return std::nullopt;
    }
    if (first == "--help") {
        printHelp();
        return EXIT_SUCCESS;
    }
    if (first == "--version") {
        std::puts("Marvelode Timer " MARVELODE_VERSION);
        return EXIT_SUCCESS;
    }
    if (first == "--diagnose") {
        return printDiagnosis();
    }
    return std::nullopt;
}
