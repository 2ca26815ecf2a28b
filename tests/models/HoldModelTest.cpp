// Days on which what holds reminders back comes and goes ten thousand times, beside a model that says when the
// popup must be up.

#include "platform/Timer.hpp"
#include "platform/linux/holding/ReminderGate.hpp"
#include "tests/models/Property.hpp"
#include "tests/stories/StoryDesktop.hpp"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <random>
#include <utility>
#include <vector>

namespace models::holding {
namespace {

using namespace std::chrono_literals;
using platform::linux::ReminderGate;
using std::chrono::milliseconds;

constexpr int days = isSanitized ? 2 : 20;
constexpr int comingsAndGoings = 10'000;
constexpr milliseconds workInterval = 60s;
constexpr milliseconds snooze = 60s;

/// Time passes; then the hold comes or goes, and perhaps something happens.
struct Deed {
    int span; ///< In tenths of a second.
    int choice;
};

/// A desktop whose reminders pass the gate, as on Linux, and whose answers take their time.
class HeldDesktop : public story::StoryDesktop {
public:
    HeldDesktop()
        : StoryDesktop{platform::RepeatingTimersDuringModal::Fire} {}

    bool isHeld = false;
    milliseconds delay{};

protected:
    int runAlert(platform::NSAlert& alert) override {
        return _gate.admitsWindow() ? StoryDesktop::runAlert(alert) : platform::NSAlert::Stopped;
    }
    void beep() override {
        _gate.sound([this] {
            StoryDesktop::beep();
            return true;
        });
    }

private:
    void ask(const ReminderGate::Answered& answered) {
        if (delay == 0ms) {
            tell(answered);
            return;
        }
        // one that repeats, since others wait while an alert is run
        platform::Timer::scheduledTimer(
            std::chrono::duration<double>{delay}.count(),
            [this, answered](const std::shared_ptr<platform::Timer>& fired) {
                tell(answered);
                fired->invalidate();
            },
            {}, true);
    }
    void tell(const ReminderGate::Answered& answered) const { answered(isHeld ? "a call" : ""); }

    ReminderGate _gate{[this](const ReminderGate::Answered& answered) { ask(answered); },
                       [this] { turn(platform::RunLoopMode::Modal); },
                       [this] { return state() == story::AppState::Reminding; }};
};

/// What must be on the screen, and how often a sound must have been heard.
class Model {
public:
    void goTo(milliseconds instant) {
        for (;;) {
            if (_answer && *_answer <= instant) {
                _now = *std::exchange(_answer, std::nullopt);
                answerCame();
            } else if (!_answer && !isUp && _timer && *_timer <= instant) {
                _now = std::max(_now, *std::exchange(_timer, std::nullopt));
                isReminding = true;
                _answer = _now + delay;
            } else {
                break;
            }
        }
        _now = instant;
    }

    void restart() {
        _timer = _now + workInterval;
        isReminding = false;
    }

    void answer(bool isRestart) {
        isUp = false;
        if (isRestart) {
            restart();
        } else if (isReminding) { // no wake came in between
            _timer = _now + snooze;
        }
        goTo(_now);
    }

    bool isAsking() const { return _answer.has_value(); }

    bool isHeld = false;
    bool isUp = false;
    bool isMuted = false;
    bool isReminding = false;
    std::size_t sounds = 0;
    milliseconds delay{};

private:
    void answerCame() {
        if (isHeld || !isReminding) { // or too late
            answer(false);
        } else {
            isUp = true;
            sounds += !isMuted;
        }
    }

    milliseconds _now{};
    std::optional<milliseconds> _timer = workInterval;
    std::optional<milliseconds> _answer;
};

class Day {
public:
    Day() {
        _desktop.hadAFirstRun();
        _desktop.defaults["TimerInterval"] = std::chrono::duration<double>{workInterval}.count();
        _desktop.launch();
    }
    ~Day() {
        _desktop.alertIsUp();
        _desktop.heard();
    }

    void pass(const Deed& deed) {
        const milliseconds span = 100ms * deed.span;
        _desktop.wait(span);
        _now += span;
        _model.goTo(_now);
        compare();
        _desktop.isHeld = _model.isHeld = !_model.isHeld;
        if (_model.isUp) {
            useAlert(deed.choice);
        } else if (!_model.isAsking()) {
            useMenu(deed.choice);
        }
        if (deed.choice % 20 == 0) {
            _desktop.sleepAndWake(1h);
            _model.restart();
            _model.goTo(_now);
        }
        compare();
    }

    std::size_t reminders() const { return _reminders; }

private:
    void useAlert(int choice) {
        if (choice < 50) {
            _desktop.click(choice < 25 ? "Restart" : "Snooze");
            _model.answer(choice < 25);
            ++_reminders;
        }
    }

    void useMenu(int choice) {
        if (choice == 51) {
            _desktop.pick("Restart timer");
            _model.restart();
        } else if (choice == 52) {
            _desktop.pick("Mute");
            _model.isMuted = !_model.isMuted;
        } else if (choice >= 53 && choice < 57) {
            const std::vector<milliseconds> delays{0ms, 1ms, 500ms, 2s};
            _desktop.delay = _model.delay = delays.at(static_cast<std::size_t>(choice - 53));
        }
    }

    void compare() {
        RC_ASSERT(_desktop.alertIsUp() == _model.isUp);
        RC_ASSERT((_desktop.state() == story::AppState::Reminding) == _model.isReminding);
        _heard += _desktop.heard().size();
        RC_ASSERT(_heard == _model.sounds);
    }

    HeldDesktop _desktop;
    Model _model;
    milliseconds _now{};
    std::size_t _heard = 0;
    std::size_t _reminders = 0;
};

TEST(HeldReminders, AreUpWhenTheModelSaysSo) {
    expectAlways(
        "a day of comings and goings",
        [] {
            std::mt19937 random{*rc::gen::arbitrary<std::uint32_t>()}; // too many deeds to print, or to shrink
            std::uniform_int_distribution span{1, 172};
            std::uniform_int_distribution choice{0, 99};
            Day day;
            for (int time = 0; time < comingsAndGoings; ++time) {
                day.pass({span(random), choice(random)});
            }
            RC_ASSERT(day.reminders() > 100U);
        },
        days);
}

} // namespace
} // namespace models::holding
