#include "statusbar/UXMenu.hpp"

#include "platform/Fatal.hpp"
#include "platform/UserDefaults.hpp"

#include <string>
#include <utility>

namespace marvelode {

using platform::NSMenu;
using platform::NSMenuItem;
using platform::NSPanel;

namespace {

NSMenuItem::StateValue checkMark(bool isOn) {
    return isOn ? NSMenuItem::StateValue::On : NSMenuItem::StateValue::Off;
}

NSMenuItem::StateValue muteCheckMark() {
    return checkMark(platform::UserDefaults::standard().boolForKey(Cfg::Key::Mute));
}

} // namespace

UXMenu::UXMenu(ConstructionKey, std::shared_ptr<Cfg> cfg, const std::shared_ptr<BuildInfo>& buildInfo,
               std::shared_ptr<UXAudio> audio, std::shared_ptr<Events> events, std::function<AppState()> state)
    : audio{std::move(audio)}
    , cfg{std::move(cfg)}
    , events{std::move(events)}
    , state{std::move(state)} {
    settings = makeShared<UXSettings>(this->cfg, SettingsView{this->cfg, this->audio}, NSPanel::HUDWindow);
    about = makeShared<UXAbout>(this->cfg, AboutView{this->cfg, buildInfo}, NSPanel::HUDWindow);
    about->window.titleVisibility = NSPanel::TitleVisibility::Hidden;
}

void UXMenu::finishConstruction(ConstructionKey) {
    initMain();
    events->subscribe([self = shared_from_this()](AppState, AppState) { self->updateMain(); });
    events->subscribe([self = shared_from_this()](Cfg::Parameter) { self->updateMain(); });
}

void UXMenu::initMain() {
    main = std::make_shared<NSMenu>();
    main->delegate = this;

    const auto add = [this](const char* title, void (UXMenu::*action)(NSMenuItem&), const char* keyEquivalent) {
        auto item = std::make_shared<NSMenuItem>(
            title, [self = shared_from_this(), action](NSMenuItem& sender) { ((*self).*action)(sender); },
            keyEquivalent);
        main->addItem(item);
        return item;
    };
    add(Title::About, &UXMenu::aboutAction, "")->isEnabled = false;
    main->addItem(NSMenuItem::separator());
    add(Title::Restart, &UXMenu::restartAction, "r")->isEnabled = false;
    add(Title::Mute, &UXMenu::toggleMute, "")->setState(muteCheckMark());
    add(Title::Popups, &UXMenu::togglePopup, "")->setState(checkMark(cfg->popups()));
    add(Title::Settings, &UXMenu::runSettingsModal, "s")->isEnabled = true;
    main->addItem(NSMenuItem::separator());
    add(Title::Quit, &UXMenu::terminateAction, "q");
}

void UXMenu::updateMain() {
    const std::shared_ptr<NSMenuItem> mute = main ? main->itemWithTitle(Title::Mute) : nullptr;
    if (!mute) {
        platform::fatal();
    }
    mute->setState(muteCheckMark());
}

void UXMenu::aboutAction(NSMenuItem&) {
    about->runModal([] {});
}

void UXMenu::restartAction(NSMenuItem&) { events->publish({Event::uiAction{UIAction::Restart}}); }

void UXMenu::toggleMute(NSMenuItem& sender) { toggle(sender, &Cfg::toggleMute); }

void UXMenu::togglePopup(NSMenuItem& sender) { toggle(sender, &Cfg::togglePopups); }

void UXMenu::runSettingsModal(NSMenuItem&) {
    settings->runModal([self = shared_from_this()] { self->updateMain(); });
}

void UXMenu::terminateAction(NSMenuItem&) { events->publish({Event::uiAction{UIAction::Terminate}}); }

void UXMenu::toggle(NSMenuItem& sender, bool (Cfg::*setting)()) { sender.setState(checkMark(((*cfg).*setting)())); }

} // namespace marvelode
