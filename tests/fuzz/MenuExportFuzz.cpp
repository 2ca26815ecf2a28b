// What a panel may ask of the menu, one call in each line of the input.

#include "platform/linux/tray/MenuExport.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/fuzz/BusStandIn.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace platform;
using namespace platform::linux;
using fuzz::require;

using Deeds = std::vector<std::function<void()>>;

/// A menu of two entries that count how often they are picked, with a line between them.
struct CountingMenu {
    CountingMenu() {
        const auto count = [this](NSMenuItem&) { ++picks; };
        menu->addItem(std::make_shared<NSMenuItem>("Restart_", count, "r"));
        menu->addItem(NSMenuItem::separator());
        menu->addItem(std::make_shared<NSMenuItem>("Mute", count, ""));
        menu->items()[2]->setState(NSMenuItem::StateValue::On);
    }

    std::shared_ptr<NSMenu> menu = std::make_shared<NSMenu>();
    int picks = 0;
};

void checkCall(std::string_view line, CountingMenu& menu, Deeds& posted) {
    menu.picks = 0;
    const fuzz::Answer answer = fuzz::happen(line);
    const Deeds deeds = std::exchange(posted, {});
    require(deeds.empty() || line.starts_with("Event"), "only events pick entries");
    require(answer != fuzz::Answer::Error || deeds.empty(), "what is refused does nothing");
    require(menu.picks == 0, "an answer comes before what the entry does");
    for (const auto& deed : deeds) {
        deed();
    }
    require(std::cmp_less_equal(menu.picks, deeds.size()), "one click picks one entry at most");
}

} // namespace

void fuzz::check(std::string_view input) {
    static const simulated::SimulatedDesktop desktop{[](int, const char* const*) { return 0; },
                                                     [](const std::string&) {}};
    static CountingMenu counting;
    static Deeds posted;
    static MenuExport exported{bus(), "/MenuBar",
                               [](std::function<void()> deed) { posted.push_back(std::move(deed)); }};
    exported.show(counting.menu);
    readProperties();
    while (!input.empty()) {
        const auto [line, rest] = cut(input, "\n");
        checkCall(line, counting, posted);
        input = rest;
    }
    requireThatAllAreAnswered();
}
