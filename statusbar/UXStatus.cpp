#include "statusbar/UXStatus.hpp"

#include "platform/Fatal.hpp"
#include "platform/Timer.hpp"
#include "statusbar/UXTime.hpp"

#include <utility>

namespace marvelode {

using platform::NSColor;
using platform::NSFont;
using platform::NSImage;
using platform::NSStatusBar;
using platform::NSStatusBarButton;

UXStatus::UXStatus(ConstructionKey, std::shared_ptr<Cfg> cfg, std::shared_ptr<UXAudio> audio,
                   std::shared_ptr<BuildInfo> buildInfo, std::shared_ptr<Events> events,
                   std::function<AppState()> state, std::function<platform::TimeInterval()> remainingTime)
    : font{NSFont::monospacedSystemFont(12, NSFont::Weight::Regular)}
    , audio{std::move(audio)}
    , cfg{std::move(cfg)}
    , buildInfo{std::move(buildInfo)}
    , events{std::move(events)}
    , remainingTime{std::move(remainingTime)}
    , state{std::move(state)} {}

void UXStatus::finishConstruction(ConstructionKey) {
    events->subscribe([self = shared_from_this()](AppState, AppState) { self->update(); });
    events->subscribe([self = shared_from_this()](Cfg::Parameter) { self->update(); });
    events->subscribe([self = shared_from_this()](UIAction) { self->update(); });
}

void UXStatus::start() {
    menu = makeShared<UXMenu>(cfg, buildInfo, audio, events, state);
    statusBarItem = NSStatusBar::system().statusItemWithLength(StatusBarItemWidth);
    button().target = this;
    button().sendActionOn(NSStatusBarButton::LeftMouseUp | NSStatusBarButton::RightMouseUp);
    statusBarItem->setMenu(menu->main);
    setIcon(TimerIcon);
    platform::Timer::scheduledTimer(1.0, [self = shared_from_this()](const auto&) { self->update(); }, {}, true);
}

void UXStatus::update() {
    const AppState now = state();
    if (now == AppState::Init) {
        return;
    }
    setIcon(now == AppState::Timing ? TimerIcon : ReminderIcon);
    updateTitle();
}

void UXStatus::updateTitle() {
    const platform::TimeInterval remaining = remainingTime();
    std::string text = remaining >= 0 ? UXTime::countdown(remaining) : UXTime::countup(-remaining);
    if (!cfg->showCountdown()) {
        return; // the last text stays
    }
    const bool isUrgent = state() == AppState::Reminding || text == "0";
    button().setAttributedTitle({std::move(text), font, isUrgent ? std::optional{NSColor::red} : std::nullopt});
}

void UXStatus::setIcon(const std::string& name) {
    if (cfg->isTest) {
        return;
    }
    std::optional<NSImage> image = NSImage::named(name);
    if (!image) {
        platform::fatal();
    }
    button().setImage(std::move(*image));
    if (button().image()) {
        button().setImageSize(IconSize);
    }
}

NSStatusBarButton& UXStatus::button() const {
    if (!statusBarItem || !statusBarItem->button()) {
        platform::fatal();
    }
    return *statusBarItem->button();
}

} // namespace marvelode
