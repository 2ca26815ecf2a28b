// Calls to the program's own name on the bus, one in each line of the input.

#include "platform/linux/RemoteControl.hpp"
#include "tests/fuzz/BusStandIn.hpp"
#include "tests/fuzz/Fuzz.hpp"

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
        ControlledProgram program;
        program.commands = {{"Restart", "restart", "Restart"}, {"ToggleMute", "toggle-mute", "Mute"}};
        program.pick = [this](std::string_view entry, std::function<void()> picked) {
            require(entry == "Restart" || entry == "Mute", "only entries of the menu are picked");
            _pending.push_back(entry == "Mute" ? std::move(picked) : [picked = std::move(picked)] {});
        };
        program.showMenu = [this] { ++menusShown; };
        program.activationTokenCame = [this](const char* token) { tokens.emplace_back(token); };
        program.isReminding = [] { return false; };
        program.text = [] { return "10m"; };
        program.remainingSeconds = [] { return 600; };
        program.isMuted = program.showsPopups = [] { return true; };
        return program;
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
    std::vector<std::string> tokens;

private:
    std::vector<std::function<void()>> _pending;
};

void checkCall(Timer& timer, std::string_view line) {
    const int menusBefore = timer.menusShown;
    timer.tokens.clear();
    const fuzz::Answer answer = fuzz::call(line);
    const std::size_t picked = timer.settle();
    const bool isMenuShown = timer.menusShown != menusBefore;
    require(answer != fuzz::Answer::Error || (picked == 0 && !isMenuShown), "what is refused does nothing");
    require(picked + static_cast<std::size_t>(isMenuShown) <= 1, "one call does one thing");
    require(timer.tokens.size() <= 1, "one call brings one token");
    for (const std::string& token : timer.tokens) {
        require(token.empty() || line.find('{') != std::string_view::npos, "no token is made up");
    }
}

} // namespace

void fuzz::check(std::string_view input) {
    static Timer timer;
    static RemoteControl control{bus(), timer.controls()};
    readProperties();
    while (!input.empty()) {
        const auto [line, rest] = cut(input, "\n");
        checkCall(timer, line);
        input = rest;
    }
    requireThatAllAreAnswered();
}
