#pragma once

// The menu behind the status item, and the two windows that it opens. It publishes requests to restart and to quit
// on the bus, and toggles the two switches in `Cfg`.

#include "alerts/UXAudio.hpp"
#include "app/Events.hpp"
#include "app/MakeShared.hpp"
#include "config/BuildInfo.hpp"
#include "config/Cfg.hpp"
#include "platform/NSMenu.hpp"
#include "windows/UXAbout.hpp"
#include "windows/UXSettings.hpp"

#include <functional>
#include <memory>

namespace marvelode {

class UXMenu : public platform::NSMenuDelegate, public std::enable_shared_from_this<UXMenu> {
public:
    /// The titles of the entries, by which they can be looked up.
    struct Title {
        static constexpr const char* About = "About Marvelode Timer";
        static constexpr const char* Restart = "Restart timer";
        static constexpr const char* Mute = "Mute";
        static constexpr const char* Popups = "Popup reminders";
        static constexpr const char* Settings = "Settings";
        static constexpr const char* Quit = "Quit";
    };

    /// Builds the windows and the menu and subscribes to changes of state and of settings. Made by `makeShared`.
    UXMenu(ConstructionKey key, std::shared_ptr<Cfg> cfg, const std::shared_ptr<BuildInfo>& buildInfo,
           std::shared_ptr<UXAudio> audio, std::shared_ptr<Events> events, std::function<AppState()> state);
    void finishConstruction(ConstructionKey key);
    UXMenu(const UXMenu&) = delete;
    UXMenu& operator=(const UXMenu&) = delete;

    void aboutAction(platform::NSMenuItem& sender);
    void restartAction(platform::NSMenuItem& sender);
    void toggleMute(platform::NSMenuItem& sender);
    void togglePopup(platform::NSMenuItem& sender);
    void runSettingsModal(platform::NSMenuItem& sender);
    void terminateAction(platform::NSMenuItem& sender);

    const std::shared_ptr<UXAudio> audio;
    const std::shared_ptr<Cfg> cfg;
    const std::shared_ptr<Events> events;
    const std::function<AppState()> state;
    std::shared_ptr<UXAbout> about;         ///< Set once, by the constructor.
    std::shared_ptr<platform::NSMenu> main; ///< The menu itself; null only during construction.
    std::shared_ptr<UXSettings> settings;   ///< Set once, by the constructor.

private:
    void initMain();

    /// Refreshes the check mark of "Mute", and of "Mute" only.
    void updateMain();

    void toggle(platform::NSMenuItem& sender, bool (Cfg::*setting)());
};

} // namespace marvelode
