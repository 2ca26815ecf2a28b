// The resident program: joins the user's session and runs the timer in it.

#include "app/main.hpp"

#include "app/App.hpp"
#include "config/Cfg.hpp"
#include "platform/linux/LinuxDesktop.hpp"
#include "platform/linux/Places.hpp"
#include "platform/linux/RemoteControl.hpp"

#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace {

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

/// Has another program do what needs no timer: what is in this one stays in memory for weeks.
int runCommand(char** arguments) {
    using namespace platform::linux;
    std::string ownName = executable();
    const std::filesystem::path program = Places::ofThisProcess().helpers / "marvelode-timer-command";
    arguments[0] = ownName.data();
    execv(program.c_str(), arguments);
    std::fprintf(stderr, "marvelode-timer: %s: %s\n", program.c_str(), g_strerror(errno));
    return EXIT_FAILURE;
}

/// Opens the null device in place of the standard descriptors that are missing. Otherwise the next file or socket
/// would get their number, and what is printed would go into it.
void openMissingDescriptors() {
    int opened = 0;
    while (opened >= 0 && opened <= STDERR_FILENO) {
        opened = open("/dev/null", O_RDWR); // gets the lowest number that is free
    }
    close(opened);
}

/// What is needed only for a moment, such as a picture on its way to the panel, goes back to the system at once,
/// small pieces join what is free beside them, and the bus's thread gets no pool of memory of its own.
void keepMemorySmall() {
    constexpr int large = 8 * 1024;
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MXFAST, 0);
    mallopt(M_MMAP_THRESHOLD, large);
    mallopt(M_TRIM_THRESHOLD, large);
    mallopt(M_TOP_PAD, large);
}

/// Prints what GLib is about to end the program for, as when memory runs out. GLib's own way takes a lock that it
/// may hold already, and would wait for itself for ever.
void printFatalErrorsAtOnce() {
    const auto print = [](const char* domain, GLogLevelFlags level, const char* message, gpointer) {
        if ((static_cast<unsigned>(level) & static_cast<unsigned>(G_LOG_LEVEL_ERROR)) != 0) {
            std::fprintf(stderr, "marvelode-timer: %s\n", message ? message : "out of memory");
        } else {
            g_log_default_handler(domain, level, message, nullptr);
        }
    };
    g_log_set_default_handler(print, nullptr);
}

/// Says that the session bus is of no use, and why.
int noBus(const char* reason) {
    std::fprintf(stderr, "marvelode-timer: There is no session bus to show the timer on: %s\n", reason);
    return EXIT_FAILURE;
}

/// Ends the program if the session bus says nothing for too long while it starts. A folder may take any time.
class SilenceGuard {
public:
    SilenceGuard() {
        constexpr unsigned seconds = 20;
        std::signal(SIGALRM, [](int) {
            constexpr std::string_view message = "marvelode-timer: The session bus does not answer.\n";
            [[maybe_unused]] const ssize_t count = write(STDERR_FILENO, message.data(), message.size());
            _exit(EXIT_FAILURE);
        });
        alarm(seconds);
    }
    ~SilenceGuard() {
        alarm(0);
        std::signal(SIGALRM, SIG_DFL);
    }
    SilenceGuard(const SilenceGuard&) = delete;
    SilenceGuard& operator=(const SilenceGuard&) = delete;
};

using BusHandle = platform::linux::ObjectHandle<GDBusConnection>;

BusHandle connect(platform::linux::ErrorSlot& error) {
    const SilenceGuard guard;
    return BusHandle{g_bus_get_sync(G_BUS_TYPE_SESSION, nullptr, error.out())};
}

bool claimName(GDBusConnection* sessionBus, platform::linux::ErrorSlot& error) {
    const SilenceGuard guard;
    return platform::linux::RemoteControl::claimName(sessionBus, error);
}

bool isReminding() { return marvelode::app->state == marvelode::App::State::Reminding; }

/// What holds while the settings cannot be read: it is no first run, and reminders come as in one.
platform::linux::SettingsFile::Values assumedSettings() {
    using Key = marvelode::Cfg::Key;
    return {{std::string{Key::Version}, std::string{}},
            {std::string{Key::PopupAlerts}, true},
            {std::string{Key::AutoRestart}, true},
            {std::string{Key::RestartOnWake}, true},
            {std::string{Key::ShowCountdown}, true}};
}

/// Which the program that asks need not share: an upgrade leaves the timer running.
platform::linux::Findings withVersion(platform::linux::Findings findings) {
    findings.insert(findings.begin(), {"version", MARVELODE_VERSION});
    return findings;
}

/// What others on the session bus may do and see: the menu's entries, and the timer's state.
platform::linux::ControlledProgram controlled(platform::linux::LinuxDesktop& desktop) {
    using marvelode::app;
    using marvelode::UXMenu;
    return {
        .commands = {{"Restart", "restart", UXMenu::Title::Restart},
                     {"ToggleMute", "toggle-mute", UXMenu::Title::Mute},
                     {"TogglePopups", "toggle-popups", UXMenu::Title::Popups},
                     {"ShowSettings", "show-settings", UXMenu::Title::Settings},
                     {"ShowAbout", "show-about", UXMenu::Title::About},
                     {"Quit", "quit", UXMenu::Title::Quit}},
        .pick = [&desktop](std::string_view entry,
                           std::function<void()> picked) { desktop.pick(entry, std::move(picked)); },
        .showMenu = [&desktop](std::function<void()> shown) { desktop.showMenuWindow(std::move(shown)); },
        .activationToken = desktop.activationToken(),
        .session = desktop.session(),
        .isReminding = isReminding,
        .text = [&desktop] { return desktop.statusText(); },
        .remainingSeconds =
            [&desktop] { return static_cast<std::int64_t>(std::floor(desktop.secondsUntilBreak().value_or(0))); },
        .isMuted = [] { return app->cfg->isMuted(); },
        .showsPopups = [] { return app->cfg->popups(); },
        .settingsState = [&desktop] { return desktop.settingsState(); },
        .findings = [&desktop] { return withVersion(desktop.findings()); },
        .hold = [&desktop](std::chrono::seconds span) { desktop.hold(span); },
        .release = [&desktop] { desktop.release(); },
        .holdReason = [&desktop] { return desktop.holdReason(); },
    };
}

/// Tells scripts of each change, even of a state that is left again within one event.
void announceChanges(platform::linux::LinuxDesktop& desktop, platform::linux::RemoteControl& control) {
    desktop.afterEachEvent([&control, isFirst = true]() mutable {
        if (std::exchange(isFirst, false)) {
            marvelode::app->events->subscribe(
                [&control](marvelode::AppState, marvelode::AppState) { control.announceChanges(); });
        }
        control.announceChanges();
    });
}

} // namespace

int main(int argc, char** argv) {
    using namespace platform::linux;
    openMissingDescriptors();
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--autostart" || first == "--diagnose") {
        return runCommand(argv);
    }
    if (argc == 2 && first == "--help") {
        printHelp();
        return EXIT_SUCCESS;
    }
    if (argc == 2 && first == "--version") {
        std::puts("Marvelode Timer " MARVELODE_VERSION);
        return EXIT_SUCCESS;
    }
    keepMemorySmall();
    printFatalErrorsAtOnce();
    std::signal(SIGPIPE, SIG_IGN); // nobody reading the messages is no reason to end
    ErrorSlot error;
    const BusHandle sessionBus = connect(error);
    if (!sessionBus) {
        return noBus(error.message());
    }
    LinuxDesktop desktop{sessionBus.get(), Places::ofThisProcess(), {argv + 1, argv + argc}, assumedSettings()};
    desktop.watchBreak(isReminding);
    desktop.session().remindersNeedDisplay([] { return marvelode::app->cfg->popups(); });
    desktop.offerWithoutPanel(
        {marvelode::UXMenu::Title::Restart, marvelode::UXMenu::Title::Settings, marvelode::UXMenu::Title::Quit});
    RemoteControl control{sessionBus.get(), controlled(desktop)};
    announceChanges(desktop, control);
    const bool isFirst = claimName(sessionBus.get(), error);
    if (error) {
        return noBus(error.message());
    }
    if (!isFirst) {
        if (!RemoteControl::showMenuOfOwner(sessionBus.get(), error)) {
            std::fprintf(stderr, "marvelode-timer: Another timer is running but cannot show its menu: %s\n",
                         error.message());
            return EXIT_FAILURE;
        }
        std::puts("Marvelode Timer is running already; its menu is on screen.");
        return EXIT_SUCCESS;
    }
    return marvelode::marvelodeTimer(argc, argv);
}
