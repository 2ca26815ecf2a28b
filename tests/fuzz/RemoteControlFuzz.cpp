// Calls to the program's own name on the bus, one in each line of the input.

#include "platform/linux/RemoteControl.hpp"
#include "tests/fuzz/BusStandIn.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace platform::linux;
using fuzz::require;

/// A timer one of whose entries can be picked, while a window is in the way of the other.
class Timer {
public:
    ControlledProgram controls() {
        const auto pick = [this](std::string_view entry, std::function<void()> picked) {
            require(entry == "Restart" || entry == "Mute", "only entries of the menu are picked");
            _pending.push_back(entry == "Mute" ? std::move(picked) : [picked = std::move(picked)] {});
        };
        const auto yes = [] { return true; };
        return {.commands = {{"Restart", "restart", "Restart"}, {"ToggleMute", "toggle-mute", "Mute"}},
                .pick = pick,
                .showMenu =
                    [this](const std::function<void()>& shown) {
                        ++menusShown;
                        shown();
                    },
                .activationToken = token,
                .session = session,
                .isReminding = yes,
                .text = [] { return "10m"; },
                .remainingSeconds = [] { return 600; },
                .isMuted = yes,
                .showsPopups = yes,
                .settingsState = [] { return 0U; },
                .findings = [] { return Findings{{"panel", "none"}}; },
                .hold =
                    [this](std::chrono::seconds span) {
                        require(span >= std::chrono::seconds{1} && span <= std::chrono::hours{24},
                                "a hold lasts from a second to a day");
                        ++holdsAndReleases;
                    },
                .release = [this] { ++holdsAndReleases; },
                .holdReason = [] { return "on request"; }};
    }

    /// Does what was picked since the last time, and returns how much that was.
    std::size_t settle() {
        const std::vector<std::function<void()>> pending = std::exchange(_pending, {});
        for (const auto& picked : pending) {
            picked();
            picked(); // which is told once all the same
        }
        return pending.size();
    }

    int menusShown = 0;
    int holdsAndReleases = 0;
    ActivationToken token;
    SessionEnvironment session;

private:
    std::vector<std::function<void()>> _pending;
};

void checkCall(Timer& timer, std::string_view line) {
    const int menusBefore = timer.menusShown;
    const int holdsBefore = timer.holdsAndReleases;
    const fuzz::Answer answer = fuzz::happen(line);
    const std::size_t picked = timer.settle();
    const std::string token = timer.token.take();
    const bool isMenuShown = timer.menusShown != menusBefore;
    const bool isHeldOrReleased = timer.holdsAndReleases != holdsBefore;
    require(answer != fuzz::Answer::Error || (picked == 0 && !isMenuShown && !isHeldOrReleased),
            "what is refused does nothing");
    require(picked + static_cast<std::size_t>(isMenuShown) + static_cast<std::size_t>(isHeldOrReleased) <= 1,
            "one call does one thing");
    require(token.size() <= ActivationToken::longest, "a token that is kept fits into a window's environment");
    require(token.empty() || line.find('{') != std::string_view::npos, "no token is made up");
}

} // namespace

void fuzz::check(std::string_view input) {
    static Timer timer;
    static const RemoteControl control{bus(), timer.controls()};
    readProperties();
    while (!input.empty()) {
        const auto [line, rest] = cut(input, "\n");
        checkCall(timer, line);
        input = rest;
    }
    requireThatAllAreAnswered();
}
