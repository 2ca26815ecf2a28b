// The settings store beside a model that holds seven optional values and a flag.

#include "app/Events.hpp"
#include "config/Cfg.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"
#include "tests/models/Property.hpp"

#include <cmath>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace models::settings {
namespace {

using namespace marvelode;
using platform::DefaultsValue;
using Parameter = Cfg::Parameter;
using Store = std::map<std::string, DefaultsValue, std::less<>>;

const std::vector<std::string> flags{"PopupAlerts", "AutoRestart", "ResartOnWake", "ShowCountdown"};

/// What the store should do.
class Model {
public:
    Store stored;
    std::vector<Parameter> published;

    void startProcess() { _isFirstRun.reset(); }

    bool isFirstRun() {
        if (!_isFirstRun) {
            _isFirstRun = !stored.contains("Version");
            stored["Version"] = std::string{"2"};
        }
        return *_isFirstRun;
    }

    bool flag(const std::string& key) {
        if (isFirstRun()) {
            stored[key] = true;
        }
        return plainFlag(key);
    }

    bool plainFlag(const std::string& key) const { return stored.contains(key) && std::get<bool>(stored.at(key)); }

    double interval() const {
        const double seconds = stored.contains("TimerInterval") ? std::get<double>(stored.at("TimerInterval")) : 0;
        return std::trunc(seconds) == 0 ? 600 : std::trunc(seconds);
    }

    std::string sound() const {
        const std::string name =
            stored.contains("AlertSound") ? std::get<std::string>(stored.at("AlertSound")) : "";
        return name == "Sonar" || name == "Bowl" || name == "Whistle" ? name : "System";
    }

    bool setInterval(double seconds) {
        if (seconds > 0 && seconds <= 7200) {
            change("TimerInterval", seconds, {Parameter::TimerInterval{seconds}});
            return true;
        }
        return false;
    }

    bool toggleMute() {
        const bool muted = !plainFlag("Mute");
        change("Mute", muted, {Parameter::Mute{muted}});
        return muted;
    }

    bool togglePopups() {
        const bool enabled = !flag("PopupAlerts");
        change("PopupAlerts", enabled, {Parameter::PopupAlerts{enabled}});
        return flag("PopupAlerts");
    }

    void disablePopups() { change("PopupAlerts", false, {Parameter::PopupAlerts{false}}); }

private:
    void change(const std::string& key, DefaultsValue value, const Parameter& announcement) {
        stored[key] = std::move(value);
        published.push_back(announcement);
    }

    std::optional<bool> _isFirstRun;
};

TEST(TheSettings, BehaveAsTheModelPredicts) {
    expectAlways("settings", [] {
        platform::simulated::SimulatedDesktop desktop{nullptr, nullptr};
        const auto events = std::make_shared<Events>();
        std::vector<Parameter> published;
        events->subscribe([&](Parameter parameter) { published.push_back(parameter); });
        const auto startProcess = [&] { return Cfg{false, events, std::make_shared<BuildInfo>("1", "d", "2")}; };

        Model model;
        if (*rc::gen::arbitrary<bool>()) {
            model.stored["Version"] = std::string{"1"};
        }
        desktop.defaults = model.stored;
        std::optional<Cfg> cfg{startProcess()};

        const auto deeds = *rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 100));
        for (const int deed : deeds) {
            switch (deed % 16) {
            case 0:
                cfg.emplace(startProcess());
                model.startProcess();
                break;
            case 1:
                RC_ASSERT(cfg->isFirstRun() == model.isFirstRun());
                break;
            case 2:
                RC_ASSERT(cfg->popups() == model.flag("PopupAlerts"));
                break;
            case 3:
                RC_ASSERT(cfg->autoRestart() == model.flag("AutoRestart"));
                break;
            case 4:
                RC_ASSERT(cfg->restartOnWake() == model.flag("ResartOnWake"));
                break;
            case 5:
                RC_ASSERT(cfg->showCountdown() == model.flag("ShowCountdown"));
                break;
            case 6:
                RC_ASSERT(cfg->isMuted() == model.plainFlag("Mute"));
                break;
            case 7:
                RC_ASSERT(cfg->timerInterval() == model.interval());
                break;
            case 8:
                RC_ASSERT(Cfg::rawValue(cfg->sound()) == model.sound());
                break;
            case 9: {
                const double seconds = *rc::gen::element(0.0, -5.0, 0.5, 1.0, 59.99, 90.7, 600.0, 7199.0, 7200.0,
                                                         7200.5, std::nan(""), 1e300);
                RC_ASSERT(cfg->setTimerInterval(seconds) == model.setInterval(seconds));
                break;
            }
            case 10:
                RC_ASSERT(cfg->toggleMute() == model.toggleMute());
                break;
            case 11:
                RC_ASSERT(cfg->togglePopups() == model.togglePopups());
                break;
            case 12:
                cfg->disablePopups();
                model.disablePopups();
                break;
            case 13: { // the settings are edited by hand
                const std::string key = *rc::gen::elementOf(flags);
                desktop.defaults[key] = model.stored[key] = *rc::gen::arbitrary<bool>();
                break;
            }
            case 14:
                desktop.defaults["AlertSound"] = model.stored["AlertSound"] =
                    *rc::gen::element<std::string>("Sonar", "Bowl", "System", "Whistle", "sonar", "");
                break;
            default: { // or removes one
                const std::string key =
                    *rc::gen::element<std::string>("TimerInterval", "Version", "PopupAlerts", "Mute");
                desktop.defaults.erase(key);
                model.stored.erase(key);
                break;
            }
            }
            RC_ASSERT(desktop.defaults == model.stored);
            RC_ASSERT(published == model.published);
        }
    });
}

} // namespace
} // namespace models::settings
