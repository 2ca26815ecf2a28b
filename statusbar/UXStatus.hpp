#pragma once

// What stands in the menu bar: one of two pictures, and the time beside it. It follows the break cycle and never
// changes it.

#include "alerts/UXAudio.hpp"
#include "app/Events.hpp"
#include "app/MakeShared.hpp"
#include "config/BuildInfo.hpp"
#include "config/Cfg.hpp"
#include "platform/NSStatusItem.hpp"
#include "statusbar/UXMenu.hpp"

#include <functional>
#include <memory>
#include <string>

namespace marvelode {

class UXStatus : public std::enable_shared_from_this<UXStatus> {
public:
    /// Subscribes to every kind of event; shows nothing yet. `state` returns the phase of the break cycle and
    /// `remainingTime` the seconds left, negative once the break is due. Made by `makeShared`.
    UXStatus(ConstructionKey key, std::shared_ptr<Cfg> cfg, std::shared_ptr<UXAudio> audio,
             std::shared_ptr<BuildInfo> buildInfo, std::shared_ptr<Events> events, std::function<AppState()> state,
             std::function<platform::TimeInterval()> remainingTime);
    void finishConstruction(ConstructionKey key);
    UXStatus(const UXStatus&) = delete;
    UXStatus& operator=(const UXStatus&) = delete;

    /// Puts the item with its menu on screen and refreshes it every second from now on. Called once.
    void start();

    /// Shows the icon and the text of this moment; does nothing before the first work interval.
    void update();

    /// Shows the image resource of that name, which must exist; in test mode the item has no image.
    void setIcon(const std::string& name);

    const std::string TimerIcon = "Marvelode.png";
    const std::string ReminderIcon = "MarvelodeGrey.png";
    const platform::NSFont font;
    const double StatusBarItemWidth = 50;        ///< In points.
    const platform::NSSize IconSize{16.0, 26.0}; ///< In points.

    const std::shared_ptr<UXAudio> audio;
    const std::shared_ptr<Cfg> cfg;
    const std::shared_ptr<BuildInfo> buildInfo;
    const std::shared_ptr<Events> events;
    std::shared_ptr<UXMenu> menu; ///< Null until `start()`.
    const std::function<platform::TimeInterval()> remainingTime;
    const std::function<AppState()> state;
    std::shared_ptr<platform::NSStatusItem> statusBarItem; ///< Null until `start()`.

private:
    void updateTitle();
    platform::NSStatusBarButton& button() const;
};

} // namespace marvelode
