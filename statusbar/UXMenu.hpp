#pragma once

// The menu behind the status item, and the two windows that it opens. It asks for a restart or the end over the
// bus, and flips the two switches in `Cfg`.

#include "alerts/UXAudio.hpp"
#include "app/Events.hpp"
#include "config/BuildInfo.hpp"
#include "config/Cfg.hpp"
#include "platform/NSMenu.hpp"
#include "windows/UXAbout.hpp"
#include "windows/UXSettings.hpp"

#include <functional>
#include <memory>

namespace marvelode {

class UXMenu : public platform::NSMenuDelegate {
public:
    /// Builds the windows and the menu and subscribes to changes of state and of settings.
    UXMenu(std::shared_ptr<Cfg> cfg, const std::shared_ptr<BuildInfo>& buildInfo, std::shared_ptr<UXAudio> audio,
           std::shared_ptr<Events> events, std::function<AppState()> state);
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
    std::shared_ptr<platform::NSMenu> main; ///< The menu itself, filled by the constructor.
    UXSettings settings;
    UXAbout about;

private:
    void initMain();

    /// Refreshes the check mark of "Mute", and of "Mute" only.
    void updateMain();

    void toggle(platform::NSMenuItem& sender, bool (Cfg::*setting)());
};

} // namespace marvelode
