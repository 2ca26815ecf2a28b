// The whole program beside the model, through random lives of its user, its clock and its machine.

#include "tests/models/CycleModel.hpp"

#include "config/Cfg.hpp"
#include "tests/models/Property.hpp"
#include "tests/stories/StoryDesktop.hpp"

#include <array>

namespace models::cycle {
namespace {

using namespace std::chrono_literals;
using platform::DefaultsValue;
using platform::RepeatingTimersDuringModal;
using std::chrono::milliseconds;

/// What happens next; which of the possible things `choice` means depends on what is on screen.
struct Deed {
    int choice;
    int detail;
};

void showValue(const Deed& deed, std::ostream& out) { out << deed.choice << "/" << deed.detail; }

/// The program and its model, to which the same things happen.
class Life {
public:
    explicit Life(RepeatingTimersDuringModal policy, bool hadAFirstRun)
        : _desktop{policy}
        , _model{policy} {
        if (hadAFirstRun) {
            _desktop.hadAFirstRun();
            _model.stored = _desktop.defaults;
        }
        _morning = static_cast<std::int64_t>(_desktop.now().timeIntervalSince1970());
        launch();
    }

    ~Life() {
        _desktop.alertIsUp(); // seen, whatever it is
        _desktop.heard();
    }

    void perform(const Deed& deed) {
        if (_model.isAlertUp) {
            performAtAlert(deed);
        } else {
            performAtRest(deed);
        }
        compare();
    }

private:
    void launch() {
        _desktop.published();
        _desktop.launch();
        _model.launch();
    }

    void wait(milliseconds span) {
        _desktop.wait(span);
        _model.wait(span.count());
    }

    void wake(int detail) {
        const milliseconds asleep = 500ms * detail * detail;
        _desktop.sleepAndWake(asleep);
        _model.wake(asleep.count());
    }

    void setClock(int detail) {
        const milliseconds span = 250ms * (detail - 50) * (detail % 7) * 10;
        _desktop.setClockForth(span);
        _model.setClockForth(span.count());
    }

    void losePower() {
        _desktop.losePower();
        launch();
    }

    void answer(bool isRestart) {
        if (isRestart) {
            _desktop.pressReturn();
        } else {
            _desktop.click("Snooze");
        }
        _model.answer(isRestart);
    }

    void toggleCheckBox() {
        if (_model.isTicked) {
            _desktop.untick("Disable popup notifications");
        } else {
            _desktop.tick("Disable popup notifications");
        }
        _model.toggleCheckBox();
    }

    void performAtAlert(const Deed& deed) {
        switch (deed.choice % 10) {
        case 0:
        case 1:
        case 2:
            answer(false);
            break;
        case 3:
        case 4:
            answer(true);
            break;
        case 5:
            toggleCheckBox();
            break;
        case 6:
            wait(250ms * deed.detail * deed.detail); // up to 41 minutes
            break;
        case 7:
            wake(deed.detail);
            break;
        case 8:
            setClock(deed.detail);
            break;
        default:
            if (deed.detail % 4 == 0) {
                losePower();
            } else {
                wait(250ms * deed.detail);
            }
            break;
        }
    }

    void performAtRest(const Deed& deed) {
        switch (deed.choice % 16) {
        case 0:
        case 1:
            wait(250ms * deed.detail * deed.detail);
            break;
        case 2:
            wait(250ms * deed.detail);
            break;
        case 3:
        case 4:
        case 5:
            wait(10min);
            break;
        case 6:
            wait(1min);
            break;
        case 7:
            _desktop.pick("Restart timer");
            _model.pickRestart();
            break;
        case 8:
            _desktop.pick("Mute");
            _model.pickMute();
            break;
        case 9:
            _desktop.pick("Popup reminders");
            _model.pickPopups();
            break;
        case 10:
            wake(deed.detail);
            break;
        case 11:
        case 12:
            useSettings(deed.detail);
            break;
        case 13:
            if (deed.detail % 3 == 0) {
                losePower();
            } else if (deed.detail % 3 == 1) {
                quitAndLaunch();
            } else {
                setClock(deed.detail);
            }
            break;
        case 14:
            readAboutBox(deed.detail);
            break;
        default:
            editByHand(deed.detail);
            break;
        }
    }

    void quitAndLaunch() {
        _desktop.pick("Quit");
        _model.pickQuit();
        RC_ASSERT(_desktop.exitStatus() == 0);
        RC_ASSERT(_desktop.published() == _model.published);
        launch();
    }

    void readAboutBox(int detail) {
        _desktop.pick("About Marvelode Timer");
        _model.openAbout();
        wait(250ms * detail * detail);
        if (detail % 3 == 0) {
            wake(detail);
        }
        _desktop.click("OK");
        _model.closeAbout();
    }

    void useSettings(int detail) {
        _desktop.pick("Settings");
        _model.openSettings();
        wait(1s * detail);

        const auto sounds = marvelode::Cfg::allSounds;
        const marvelode::Cfg::Sound sound = sounds.at(static_cast<std::size_t>(detail) % sounds.size());
        Entries entries{std::nullopt, std::string{marvelode::Cfg::rawValue(sound)}, detail % 3 == 0,
                        detail % 5 == 0 && _model.isAutoRestartOffered};
        if (detail % 2 == 0) {
            entries.minutes = *rc::gen::element<std::int64_t>(-1, 0, 1, 2, 5, 10, 61, 120, 121);
            _desktop.type(std::to_string(*entries.minutes));
        }
        _desktop.choose("Reminder sound", entries.sound);
        flip("Restart after sleep", 2, entries.flipsRestartOnWake);
        flip("Auto restart timer", 3, entries.flipsAutoRestart);
        _model.enter(entries);

        if (detail % 7 == 0) {
            _desktop.closeWindow();
            _model.closeSettings();
            return;
        }
        _desktop.pressReturn();
        if (!_model.confirm()) {
            RC_ASSERT(_desktop.alert().messageText == "Oops");
            wait(1s * detail);
            _desktop.click("OK");
            _desktop.closeWindow();
            _model.closeSettings();
        }
        RC_ASSERT(!_desktop.panelIsUp());
    }

    void flip(const std::string& label, std::size_t line, bool isFlipped) {
        if (!isFlipped) {
            return;
        }
        if (_desktop.panelLines().at(line) == label + " | [x]") {
            _desktop.untick(label);
        } else {
            _desktop.tick(label);
        }
    }

    void editByHand(int detail) {
        static const std::array keys{"AutoRestart", "ShowCountdown", "PopupAlerts", "Mute", "TimerInterval"};
        const std::string key = keys.at(static_cast<std::size_t>(detail % 5));
        const DefaultsValue value = key == "TimerInterval"
                                        ? DefaultsValue{*rc::gen::element(0.0, 0.5, 45.0, 90.5, 600.0, 4000.0)}
                                        : DefaultsValue{detail % 2 == 0};
        _desktop.defaults[key] = value;
        _model.stored[key] = value;
    }

    void compare() {
        RC_ASSERT(_desktop.isRunning());
        RC_ASSERT(_desktop.state() == _model.state);
        RC_ASSERT(_desktop.alertIsUp() == _model.isAlertUp);
        RC_ASSERT(_desktop.published() == _model.published);
        RC_ASSERT(_desktop.heard() == _model.heard);
        RC_ASSERT(_desktop.defaults == _model.stored);
        RC_ASSERT(_desktop.title() == _model.title);
        RC_ASSERT(_desktop.titleColor().has_value() == _model.isTitleRed);
        RC_ASSERT(_desktop.icon() == (_model.state == AppState::Timing ? "Marvelode.png" : "MarvelodeGrey.png"));
        RC_ASSERT(_desktop.isChecked("Mute") == _model.isMuteMarked);
        RC_ASSERT(_desktop.isChecked("Popup reminders") == _model.isPopupsMarked);
        RC_ASSERT(_desktop.deadline() ==
                  static_cast<double>(_morning) + static_cast<double>(_model.deadline()) / 1000);
        if (!_model.isAlertUp) {
            RC_ASSERT(_desktop.isTimerPending() == _model.isTimerPending());
        }
        _model.published.clear();
        _model.heard.clear();
    }

    story::StoryDesktop _desktop;
    CycleModel _model;
    std::int64_t _morning = 0;
};

TEST(TheProgram, BehavesAsTheModelPredicts) {
    expectAlways("lives", [] {
        Life life{*rc::gen::element(RepeatingTimersDuringModal::Wait, RepeatingTimersDuringModal::Fire),
                  *rc::gen::weightedElement<bool>({{3, true}, {1, false}})};
        const auto deeds = *rc::gen::container<std::vector<Deed>>(
            rc::gen::construct<Deed>(rc::gen::inRange(0, 160), rc::gen::inRange(0, 100)));
        for (const Deed& deed : deeds) {
            life.perform(deed);
        }
    });
}

} // namespace
} // namespace models::cycle
