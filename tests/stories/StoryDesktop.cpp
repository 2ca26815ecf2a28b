#include "tests/stories/StoryDesktop.hpp"

#include "app/App.hpp"
#include "app/main.hpp"
#include "tests/support/TakeApart.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <utility>

namespace story {
namespace {

using marvelode::Cfg;
using marvelode::UIAction;
using platform::simulated::Journal;
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

/// Takes the program apart at the end of its run, whether it ended by itself or lost power.
struct End {
    ~End() {
        if (const auto app = std::exchange(marvelode::app, nullptr)) {
            takeApart(*app);
        }
    }
};

} // namespace

int oneOfManyPrograms(int argc, const char* const* argv) {
    const End end;
    return marvelode::marvelodeTimer(argc, argv);
}

StoryDesktop::StoryDesktop(platform::RepeatingTimersDuringModal policy)
    : platform::simulated::SimulatedDesktop{
          oneOfManyPrograms, [](const std::string& complaint) { ADD_FAILURE() << complaint; }, policy} {
    resources = completeInstallation();
}

platform::simulated::Resources StoryDesktop::completeInstallation() {
    platform::simulated::Resources files{
        {"BuildInfo.txt", TextFile{"Build=1427\nDate=2025-06-09\nVersion=1.2.0\n"}},
        {"Marvelode.png", PictureFile{{512, 832}}},
        {"MarvelodeGrey.png", PictureFile{{512, 832}}},
    };
    for (const Cfg::Sound sound : Cfg::allSounds) {
        if (sound != Cfg::Sound::System) {
            files.emplace(std::string{Cfg::rawValue(sound)} + ".m4a", SoundFile{});
        }
    }
    return files;
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

Lines StoryDesktop::published() { return news(Journal::Kind::Published); }

int StoryDesktop::run(int argc, const char* const* argv) {
    marvelode::Events& events = *marvelode::app->events;
    events.subscribe([this](Parameter parameter) { publish(std::visit(ParameterWriter{}, parameter.change)); });
    events.subscribe([this](UIAction action) { publish(nameOf(action)); });
    events.subscribe(
        [this](AppState before, AppState after) { publish(std::string{nameOf(before)} + " to " + nameOf(after)); });
    return platform::simulated::SimulatedDesktop::run(argc, argv);
}

} // namespace story
