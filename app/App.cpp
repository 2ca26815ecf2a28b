#include "app/App.hpp"

#include "platform/Fatal.hpp"
#include "platform/NSWorkspace.hpp"

#include <any>
#include <utility>

namespace marvelode {

using platform::Date;
using platform::NotificationCenter;
using platform::NSAlert;
using platform::NSApplication;
using platform::NSImage;
using platform::NSRunningApplication;
using platform::NSSuppressionButton;
using platform::NSWorkspace;
using platform::TimeInterval;

namespace {

std::shared_ptr<BuildInfo> loadBuildInfo(bool isTest) {
    return isTest ? std::make_shared<BuildInfo>("test", "test", "test") : BuildInfo::fromResourceFile("BuildInfo");
}

bool isTicked(const NSSuppressionButton* button) {
    return button && button->state == NSSuppressionButton::StateValue::On;
}

} // namespace

const NSImage& App::Icon::image() {
    static const NSImage image = [] {
        std::optional<NSImage> found = NSImage::named("Marvelode.png");
        if (!found) {
            platform::fatal();
        }
        return *found;
    }();
    return image;
}

std::shared_ptr<App> App::create(bool isTest) {
    const auto events = std::make_shared<Events>();
    const auto cfg = std::make_shared<Cfg>(isTest, events, loadBuildInfo(isTest));
    const auto audio = std::make_shared<UXAudio>(cfg);
    const auto popup = std::make_shared<UXPopup>(cfg);
    return makeShared<App>(audio, popup, cfg, events);
}

App::App(ConstructionKey, std::shared_ptr<UXAudio> audio, std::shared_ptr<UXPopup> popup, std::shared_ptr<Cfg> cfg,
         std::shared_ptr<Events> events)
    : systemTimerDeadline{Date::now()}
    , audio{std::move(audio)}
    , popup{std::move(popup)}
    , cfg{std::move(cfg)}
    , events{std::move(events)} {}

void App::finishConstruction(ConstructionKey) {
    status = makeShared<UXStatus>(
        cfg, audio, cfg->buildInfo, events, [self = shared_from_this()] { return self->state; },
        [self = shared_from_this()] { return self->countdown(); });
}

App::~App() { NSWorkspace::shared().notificationCenter().removeObserver(this); }

void App::applicationDidFinishLaunching() { initialize(); }

void App::initialize() {
    events->subscribe([self = shared_from_this()](Cfg::Parameter parameter) { self->onCfgChange(parameter); });
    events->subscribe([self = shared_from_this()](UIAction action) { self->onUIAction(action); });
    if (!status) {
        platform::fatal();
    }
    status->start();
    NSWorkspace::shared().notificationCenter().addObserver(
        this,
        [observer = weak_from_this()] { // a notification centre owns no observer
            if (const std::shared_ptr<App> self = observer.lock()) {
                self->didWakeFromSleep();
            }
        },
        NotificationCenter::Name::NSWorkspaceDidWakeNotification);
    restart();
}

TimeInterval App::countdown() const { return systemTimerDeadline - Date::now(); }

void App::restart() {
    time(cfg->timerInterval(), TimerType::Timer);
    const State oldState = std::exchange(state, State::Timing);
    events->publish({Event::appStateChange{oldState, State::Timing}});
}

void App::time(TimeInterval interval, TimerType type) {
    if (systemTimer) {
        systemTimer->invalidate();
    }
    if (type == TimerType::Timer) {
        systemTimerDeadline = Date::now() + interval;
    }
    systemTimer = platform::Timer::scheduledTimer(
        interval, [self = shared_from_this()](const auto& fired) { self->timeExpired(fired); }, type, false);
}

void App::timeExpired(const std::shared_ptr<platform::Timer>& fired) {
    if (!systemTimer || fired != systemTimer || !systemTimer->isValid()) {
        return;
    }
    const auto* type = std::any_cast<TimerType>(&systemTimer->userInfo());
    if (!type) {
        platform::fatal();
    }
    switch (*type) {
    case TimerType::Reminder:
        reminderFired();
        break;
    case TimerType::Timer:
        timerFired();
        break;
    }
}

void App::timerFired() {
    if (state != State::Timing) {
        return;
    }
    state = State::Reminding;
    events->publish({Event::appStateChange{State::Timing, State::Reminding}});
    notify();
    // Read afresh: a user who ticked the popup's check box gets the automatic restart whatever the answer
    // was.
    if (!cfg->popups() && cfg->autoRestart()) {
        restart();
    }
}

void App::reminderFired() {
    if (state != State::Reminding) {
        return;
    }
    if (cfg->popups() || !cfg->autoRestart()) {
        notify();
    } else {
        restart();
    }
}

void App::notify() {
    audio->playNotification();
    if (!cfg->popups()) {
        return;
    }
    NSRunningApplication::current().activate(NSRunningApplication::ActivateIgnoringOtherApps);
    const int response = popup->alert.runModal();
    if (isTicked(popup->alert.suppressionButton())) {
        popup->cfg->disablePopups();
    }
    if (response == NSAlert::FirstButtonReturn) {
        restart();
    } else if (state == State::Reminding) { // a wake from sleep may have restarted the cycle meanwhile
        time(cfg->reminderInterval(), TimerType::Reminder);
    }
}

void App::onCfgChange(const Cfg::Parameter& parameter) {
    if (std::holds_alternative<Cfg::Parameter::TimerInterval>(parameter.change)) {
        restart();
    }
}

void App::onUIAction(UIAction action) {
    switch (action) {
    case UIAction::CountdownChange:
        break;
    case UIAction::Restart:
        restart();
        break;
    case UIAction::Terminate:
        terminate();
        break;
    }
}

void App::terminate() { NSApplication::shared().terminate(); }

void App::didWakeFromSleep() { restart(); }

} // namespace marvelode
