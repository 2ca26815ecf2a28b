#include "tests/stories/StoryDesktop.hpp"

#include "app/App.hpp"
#include "app/main.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

namespace story {
namespace {

using marvelode::Cfg;
using marvelode::UIAction;
using Parameter = Cfg::Parameter;

const char* nameOf(AppState state) {
    switch (state) {
    case AppState::Init:
        return "Init";
    case AppState::Timing:
        return "Timing";
    case AppState::Reminding:
        return "Reminding";
    }
    return "?";
}

const char* nameOf(UIAction action) {
    switch (action) {
    case UIAction::CountdownChange:
        return "CountdownChange";
    case UIAction::Restart:
        return "Restart";
    case UIAction::Terminate:
        return "Terminate";
    }
    return "?";
}

struct ParameterWriter {
    std::string operator()(const Parameter::AlertSound& sound) const {
        return "AlertSound " + std::string{Cfg::rawValue(sound.value)};
    }
    std::string operator()(const Parameter::AutoRestart& change) const { return flag("AutoRestart", change.value); }
    std::string operator()(const Parameter::Mute& change) const { return flag("Mute", change.value); }
    std::string operator()(const Parameter::PopupAlerts& change) const { return flag("PopupAlerts", change.value); }
    std::string operator()(const Parameter::RestartOnWake& change) const {
        return flag("RestartOnWake", change.value);
    }
    std::string operator()(const Parameter::ShowCountdown& change) const {
        return flag("ShowCountdown", change.value);
    }
    std::string operator()(const Parameter::TimerInterval& change) const {
        std::ostringstream text;
        text << "TimerInterval " << change.value;
        return text.str();
    }

    static std::string flag(const std::string& name, bool value) { return name + (value ? " true" : " false"); }
};

} // namespace

StoryDesktop::StoryDesktop(platform::RepeatingTimersDuringModal policy)
    : platform::simulated::SimulatedDesktop{
          marvelode::marvelodeTimer, [](const std::string& complaint) { ADD_FAILURE() << complaint; }, policy} {
    resources = {
        {"BuildInfo.txt", TextFile{"Build=1427\nDate=2025-06-09\nVersion=1.2.0\n"}},
        {"Sonar.m4a", SoundFile{}},
        {"Bowl.m4a", SoundFile{}},
        {"Whistle.m4a", SoundFile{}},
        {"Marvelode.png", PictureFile{{512, 832}}},
        {"MarvelodeGrey.png", PictureFile{{512, 832}}},
    };
}

void StoryDesktop::hadAFirstRun() {
    defaults = {{"Version", std::string{"1.1.0"}},
                {"PopupAlerts", true},
                {"AutoRestart", true},
                {"ResartOnWake", true},
                {"ShowCountdown", true}};
}

void StoryDesktop::workUntilTheBreak() {
    hadAFirstRun();
    launch();
    wait(10min);
}

AppState StoryDesktop::state() const { return marvelode::app->state; }

double StoryDesktop::deadline() const { return marvelode::app->systemTimerDeadline.timeIntervalSince1970(); }

bool StoryDesktop::isTimerPending() const {
    return marvelode::app->systemTimer && marvelode::app->systemTimer->isValid();
}

Lines StoryDesktop::published() { return std::exchange(_published, {}); }

int StoryDesktop::run(int argc, const char* const* argv) {
    marvelode::Events& events = *marvelode::app->events;
    events.subscribe(
        [this](Parameter parameter) { _published.push_back(std::visit(ParameterWriter{}, parameter.change)); });
    events.subscribe([this](UIAction action) { _published.emplace_back(nameOf(action)); });
    events.subscribe([this](AppState before, AppState after) {
        _published.push_back(std::string{nameOf(before)} + " to " + nameOf(after));
    });
    return platform::simulated::SimulatedDesktop::run(argc, argv);
}

} // namespace story
