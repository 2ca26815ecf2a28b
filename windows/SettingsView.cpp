#include "windows/SettingsView.hpp"

#include "app/Events.hpp"
#include "platform/Fatal.hpp"
#include "platform/NSAlert.hpp"
#include "platform/NSApplication.hpp"
#include "platform/UserDefaults.hpp"
#include "windows/Heading.hpp"

#include <string>
#include <utility>
#include <vector>

namespace marvelode {

using namespace platform;

namespace {

constexpr double labelWidth = 140;
constexpr double controlWidth = 100;
constexpr double controlLeadingPadding = 20;

View row(const char* label, View control) {
    return HStack({Text(label).frame({.width = labelWidth, .height = {}, .alignment = Alignment::Trailing}),
                   std::move(control)
                       .frame({.width = controlWidth, .height = {}, .alignment = Alignment::Leading})
                       .padding(Edges::Leading, controlLeadingPadding)});
}

/// The interval in seconds, as the digits of a number without a sign.
std::string unsignedSeconds(TimeInterval interval) {
    if (interval < 0) {
        fatal();
    }
    return std::to_string(static_cast<std::uint64_t>(interval));
}

void store(const Cfg& cfg, DefaultsValue value, std::string_view key, const Cfg::Parameter& announcement) {
    UserDefaults::standard().set(std::move(value), key);
    cfg.events->publish({Event::cfgChange{announcement}});
}

} // namespace

SettingsView::SettingsView(std::shared_ptr<Cfg> cfg, std::shared_ptr<UXAudio> audio)
    : _timerIntervalMinutes{static_cast<std::int64_t>(cfg->timerInterval() / 60)}
    , _selectedSound{cfg->sound()}
    , _restartOnWake{cfg->restartOnWake()}
    , _autoRestart{cfg->autoRestart()}
    , cfg{std::move(cfg)}
    , audio{std::move(audio)} {}

View SettingsView::body() const {
    const auto save = [view = *this] { view.update(); };
    std::vector<std::pair<std::string, Cfg::Sound>> soundItems;
    for (const Cfg::Sound sound : sounds) {
        soundItems.emplace_back(Cfg::rawValue(sound), sound);
    }
    return VStack({
                      heading(cfg->isTest, {}),
                      row("Interval in minutes",
                          TextField(unsignedSeconds(cfg->timerInterval()), _timerIntervalMinutes.binding(),
                                    NumberFormatter{})
                              .frame({.width = 30, .height = {}, .alignment = Alignment::Leading})
                              .focusable()
                              .onSubmit(save)),
                      row("Restart after sleep", Toggle("", _restartOnWake.binding())),
                      row("Auto restart timer", Toggle("", _autoRestart.binding()).disabled(cfg->popups())),
                      row("Reminder sound",
                          Picker("", _selectedSound.binding(), soundItems).focusable().onChange([view = *this] {
                              view.audio->play(*view._selectedSound);
                          }))
                          .padding(Edges::Bottom),
                      Button("OK", 5, save).focusable().keyboardShortcut(KeyboardShortcut::DefaultAction),
                  })
        .fixedSize()
        .padding(Edges::Bottom, 10)
        .padding(Edges::Trailing, 10)
        .onAppear([] { NSApplication::shared().activate(true); });
}

void SettingsView::update() const {
    store(*cfg, std::string{Cfg::rawValue(*_selectedSound)}, Cfg::Key::AlertSound,
          {Cfg::Parameter::AlertSound{*_selectedSound}});
    store(*cfg, *_restartOnWake, Cfg::Key::RestartOnWake, {Cfg::Parameter::RestartOnWake{*_restartOnWake}});
    store(*cfg, *_autoRestart, Cfg::Key::AutoRestart, {Cfg::Parameter::AutoRestart{*_autoRestart}});

    std::int64_t seconds = 0;
    if (__builtin_mul_overflow(*_timerIntervalMinutes, std::int64_t{60}, &seconds)) {
        fatal();
    }
    if (cfg->setTimerInterval(static_cast<TimeInterval>(seconds))) {
        _done();
        return;
    }
    NSAlert alert;
    alert.messageText = "Oops";
    alert.informativeText = "Invalid interval";
    alert.alertStyle = NSAlert::Style::Warning;
    alert.runModal();
}

} // namespace marvelode
