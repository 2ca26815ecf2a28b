// What the program that shows windows may tell, one thing after the other, while an alert or a panel is up: an
// alert if the input begins with an "a". Each four bytes behind the first are an event: its kind, window, control
// and value. At the end of the input the program dies.

#include "platform/linux/window/WindowHelper.hpp"
#include "platform/linux/window/WindowProcess.hpp"
#include "tests/fuzz/Fuzz.hpp"
#include "tests/support/BareDesktop.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace {

using namespace platform;
using namespace platform::linux;
using fuzz::require;

std::string_view told; // what is left of the input
std::set<std::uint32_t> windowsOnScreen;

bool processRuns = false;

constexpr std::size_t bytesOfEvent = 4;

/// A byte of an event as a number that is in the range of what there is, or just beyond.
std::uint32_t number(std::size_t index, std::uint32_t choices) {
    return static_cast<unsigned char>(told[index]) % choices;
}

ControlValue valueTold() {
    constexpr std::uint32_t truths = 2;
    const std::uint32_t value = number(3, 8);
    return value < truths ? ControlValue{value == 1} : ControlValue{std::int64_t{value} - 3};
}

Event eventTold() {
    using enum Event::Kind;
    constexpr std::array kinds{Changed, Pressed, Submitted, Closed};
    Event event{kinds.at(number(0, kinds.size())), number(1, 5), number(2, 6), {}};
    if (event.kind == Changed) {
        event.value = valueTold();
    }
    told.remove_prefix(bytesOfEvent);
    return event;
}

/// A panel with a control of each kind; Return in its field asks a question above it.
class Form : public NSWindowDelegate {
public:
    void run(BareDesktop& desktop) {
        panel.delegate = this;
        const View content = VStack(
            {TextField("", Binding<std::int64_t>{[this] { return minutes; }, [this](auto next) { minutes = next; }},
                       NumberFormatter{})
                 .onSubmit([&] { ask(desktop); }),
             Toggle("", Binding<bool>{[this] { return isOn; }, [this](bool next) { isOn = next; }}),
             Picker<int>("", Binding<int>{[this] { return choice; }, [this](int next) { choice = next; }},
                         {{"one", 1}, {"two", 2}}),
             Button("", 0, [&] {
                 isDone = true;
                 desktop.stopModal();
             })});
        desktop.runModal(panel, content);
        require(closings == (isDone ? 0 : 1),
                "a panel that its own button does not close is told that it closes, once");
        require(choice == 1 || choice == 2, "a choice is one of those that are offered");
    }

    void windowWillClose() override { ++closings; }

    static void ask(BareDesktop& desktop) {
        NSAlert alert;
        alert.addButton("Yes");
        alert.addButton("No");
        alert.setShowsSuppressionButton(true);
        const std::size_t below = windowsOnScreen.size();
        const int answer = desktop.runAlert(alert);
        require(answer == NSAlert::FirstButtonReturn || answer == NSAlert::SecondButtonReturn ||
                    answer == NSAlert::Stopped,
                "an answer is one of the buttons, or none");
        require(!processRuns || windowsOnScreen.size() == below, "an answered question leaves the screen");
    }

private:
    NSPanel panel;
    std::int64_t minutes = 25;
    bool isOn = false;
    int choice = 1;
    bool isDone = false;
    int closings = 0;
};

} // namespace

// The process, as far as its user sees it: it says what the input tells, and is dead when that ends.
namespace platform::linux {

WindowProcess::WindowProcess(const HelperProgram& program, ErrorLog& errorLog,
                             std::function<void()> somethingHappened, const std::string& /*activationToken*/)
    : _errorLog{errorLog}
    , _somethingHappened{std::move(somethingHappened)}
    , _session{program.session()}
    , _display{_session.display()}
    , _socket{0}
    , _hasShownWindow{true} {
    require(!processRuns, "one process shows all windows");
    processRuns = true;
}

WindowProcess::~WindowProcess() {
    processRuns = false;
    windowsOnScreen.clear();
}

std::optional<Event> WindowProcess::nextEvent() {
    if (_socket < 0 || told.size() < bytesOfEvent) {
        giveUp("");
        return std::nullopt;
    }
    _somethingHappened();
    return eventTold();
}

void WindowProcess::send(const Request& request) {
    if (const auto* closing = std::get_if<CloseRequest>(&request)) {
        require(_socket < 0 || windowsOnScreen.erase(closing->window) == 1, "only what is shown is closed");
    } else if (const auto* alert = std::get_if<AlertRequest>(&request)) {
        require(windowsOnScreen.insert(alert->window).second, "each window has a number of its own");
    } else if (const auto* panel = std::get_if<PanelRequest>(&request)) {
        require(windowsOnScreen.insert(panel->window).second, "each window has a number of its own");
    } else {
        const auto& values = std::get<ValuesRequest>(request);
        require(_socket < 0 || windowsOnScreen.contains(values.window), "only what is shown changes");
    }
}

void WindowProcess::giveUp(std::string_view /*reason*/) {
    _socket = -1;
    processRuns = false;
}

} // namespace platform::linux

void fuzz::check(std::string_view input) {
    BareDesktop desktop{"none"};
    told = input.substr(input.empty() ? 0 : 1);
    if (input.starts_with('a')) {
        Form::ask(desktop);
    } else {
        Form{}.run(desktop);
    }
    require(!processRuns && windowsOnScreen.empty(), "no window outlives its call");
}
