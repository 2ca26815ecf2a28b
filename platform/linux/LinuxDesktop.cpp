#include "platform/linux/LinuxDesktop.hpp"

#include "platform/linux/Journal.hpp"
#include "platform/linux/Output.hpp"
#include "platform/linux/glib/Delivery.hpp"

#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <ctime>
#include <utility>

namespace platform::linux {
namespace {

/// By a clock that goes on while the machine sleeps, and that cannot be set.
TimeInterval secondsSinceBoot() { return std::chrono::duration<double>{timeBy(CLOCK_BOOTTIME)}.count(); }

} // namespace

LinuxDesktop::LinuxDesktop(GDBusConnection* sessionBus, Places places, const std::vector<std::string>& arguments,
                           SettingsFile::Values assumedSettings)
    : _sessionBus{shared(sessionBus)}
    , _argumentDomain{argumentDomain(arguments)}
    , _loop{[this] { return application.isModal() ? RunLoopMode::Modal : RunLoopMode::Default; },
            [this] { settle(); }, [this] { _wakeNotice.look(); }}
    , _resources{std::move(places.resources)}
    , _settings{std::move(places.settings), _errorLog, std::move(assumedSettings)}
    , _desktopSettings{_settings, _errorLog}
    , _windowProgram{places.helpers / "marvelode-timer-window", _session}
    , _soundProgram{places.helpers / "marvelode-timer-sound", _session}
    , _holdProgram{places.helpers / "marvelode-timer-hold", _session}
    , _windows{_windowProgram, [this] { _loop.iterate(); }, _errorLog, _activationToken}
    , _sounds{_soundProgram, _errorLog}
    , _holdQuestion{sessionBus, [this] { return systemBus(); }, _holdProgram, _errorLog}
    , _holding{_desktopSettings, _holdQuestion, [this] { _loop.iterate(); }, [this] { return _isBreakDue(); },
               secondsSinceBoot}
    , _restartAfterLock{sessionBus, [this] { return systemBus(); }, _desktopSettings, secondsSinceBoot,
                        [this] { postWake(); }}
    , _statusWindow{_windowProgram, [this](NSMenuItem& item) { pick(item.title); }, _errorLog, _activationToken}
    , _traylessNotice{sessionBus, _statusWindow, [this](std::string_view entry) { pick(entry); },
                      _activationToken} {
    g_dbus_connection_set_exit_on_close(sessionBus, FALSE);
    const auto busClosed = +[](GDBusConnection*, gboolean, GError*, LinuxDesktop* self) {
        self->_errorLog.add("the session bus has gone, and the timer with it");
        self->terminate();
    };
    _busClosedHandler = g_signal_connect(sessionBus, "closed", G_CALLBACK(busClosed), this);
}

LinuxDesktop::~LinuxDesktop() { g_signal_handler_disconnect(_sessionBus.get(), _busClosedHandler); }

int LinuxDesktop::run(int, const char* const*) {
    _endingSignals.emplace([this] { terminate(); }); // from here on somebody heeds them
    _settings.clearUp();
    _loop.post([this] { // once the status item is on its way
        _wakeWatcher.emplace([this] { _wakeNotice.hear(); });
    });
    application.delegate->applicationDidFinishLaunching();
    _loop.run();
    awaitDelivery(_sessionBus.get()); // the answer to the call that asked for the end is among what was sent
    return 0;
}

void LinuxDesktop::terminate() {
    _loop.quit();
    _holding.gate.close();
    _windows.closeAll();
}

void LinuxDesktop::activate(bool) {} // windows come to the front by themselves

Date LinuxDesktop::now() { return Date{static_cast<double>(g_get_real_time()) / G_USEC_PER_SEC}; }

void LinuxDesktop::schedule(const std::shared_ptr<Timer>& timer) {
    _loop.schedule(timer);
    if (!timer->repeats()) {
        // once in a turn of the cycle: many calls at once leave pages behind that hold nothing any more
        malloc_trim(0);
    }
}

void LinuxDesktop::cancel(const Timer& timer) { _loop.cancel(timer); }

void LinuxDesktop::showStatusItem(const std::shared_ptr<NSStatusItem>& item) {
    _statusItem = item;
    menuChanged();
}

void LinuxDesktop::statusItemChanged() { _loop.settleSoon(); }

void LinuxDesktop::menuChanged() {
    _isMenuOld = true;
    _loop.settleSoon();
}

/// An alert above no other window is a reminder: all others come from a panel.
int LinuxDesktop::runAlert(NSAlert& alert) {
    const bool isReminder = !_windows.isShowing();
    return isReminder && !admitsReminder() ? NSAlert::Stopped : _windows.runAlert(alert);
}

/// Asks nobody what may hold it while the session is over.
bool LinuxDesktop::admitsReminder() { return _session.isWorthAReminder() && _holding.gate.admitsWindow(); }

void LinuxDesktop::runModal(NSPanel& panel, const View& content) { _windows.runModal(panel, content); }

void LinuxDesktop::stopModal() { _windows.stopModal(); }

void LinuxDesktop::center(NSPanel&) {} // every window opens in the middle of the screen

void LinuxDesktop::close(NSPanel& panel) {
    if (panel.delegate) {
        panel.delegate->windowWillClose();
    }
}

bool LinuxDesktop::boolForKey(std::string_view key) {
    const std::optional<DefaultsValue> value = defaultsValue(key);
    return value && boolFromDefaults(*value);
}

std::int64_t LinuxDesktop::integerForKey(std::string_view key) {
    const std::optional<DefaultsValue> value = defaultsValue(key);
    return value ? integerFromDefaults(*value) : 0;
}

std::optional<std::string> LinuxDesktop::stringForKey(std::string_view key) {
    const std::optional<DefaultsValue> value = defaultsValue(key);
    return value ? std::optional{stringFromDefaults(*value)} : std::nullopt;
}

void LinuxDesktop::setDefault(DefaultsValue value, std::string_view key) { _settings.set(std::move(value), key); }

std::optional<std::filesystem::path> LinuxDesktop::resource(std::string_view name, std::string_view extension) {
    return _resources.find(name, extension);
}

std::optional<std::string> LinuxDesktop::contentsOf(const std::filesystem::path& url) {
    return contentsOfFile(url);
}

std::optional<NSImage> LinuxDesktop::imageNamed(std::string_view name) { return _resources.imageNamed(name); }

bool LinuxDesktop::canPlay(const std::filesystem::path& url) { return _sounds.canPlay(url); }

bool LinuxDesktop::play(const NSSound& sound) {
    return makeSound([this, url = sound.url] { return _sounds.play(url, _desktopSettings.current().volume); });
}

void LinuxDesktop::beep() {
    makeSound([this] {
        _sounds.beep(_desktopSettings.current().volume);
        return true;
    });
}

/// A sound above no window is a reminder's: all others are tried in a panel.
bool LinuxDesktop::makeSound(std::function<bool()> play) {
    return _windows.isShowing() ? play() : _session.isWorthASound() && _holding.gate.sound(std::move(play));
}

void LinuxDesktop::print(std::string_view line) { writeAtOnce(STDOUT_FILENO, std::string{line} + '\n'); }

bool LinuxDesktop::isLogEnabled(const Logger&, Logger::Level) { return isJournalRunning(); }

void LinuxDesktop::log(const Logger& logger, Logger::Level level, std::string_view message) {
    writeToJournal(logger, level, message);
}

void LinuxDesktop::pick(std::string_view entry, std::function<void()> picked) {
    _loop.post([this, entry = std::string{entry}, picked = std::move(picked)] {
        const std::shared_ptr<NSMenu> menu = _statusItem ? _statusItem->menu() : nullptr;
        const std::shared_ptr<NSMenuItem> item = menu ? menu->itemWithTitle(entry) : nullptr;
        if (item && menu->validates(*item)) {
            _windows.awaitNext(picked);
            menu->performActionForItem(*item);
            if (const auto noWindowCame = _windows.takeAwaiting()) {
                noWindowCame();
            }
        }
    });
}

void LinuxDesktop::showMenuWindow(std::function<void()> shown) { _statusWindow.open(std::move(shown)); }

void LinuxDesktop::hold(std::chrono::seconds span) {
    _holding.request.begin(span);
    _loop.settleSoon();
}

void LinuxDesktop::release() {
    _holding.request.end();
    _loop.settleSoon();
}

std::string LinuxDesktop::statusText() const {
    return _statusItem ? _statusItem->button()->attributedTitle().string : std::string{};
}

Findings LinuxDesktop::findings() {
    const std::vector<std::string> session = _session.forHelpers();
    const auto has = [&](std::string_view variable) {
        return std::any_of(session.begin(), session.end(), [&](const std::string& each) {
            return each.starts_with(variable) && each.size() > variable.size();
        });
    };
    Findings found{{"display", has("WAYLAND_DISPLAY=") ? "Wayland"
                               : has("DISPLAY=")       ? "X"
                                                       : "none"},
                   {"panel", _statusNotifierItem ? _statusNotifierItem->panelInWords() : "not yet looked for"},
                   {"waking", _wakeWatcher && _wakeWatcher->isConnected() ? "told by clocks and system bus"
                                                                          : "told by clocks"},
                   {"held", holdReason().empty() ? "no" : holdReason()},
                   {"settings", _settings.problem().empty() ? "no problem" : _settings.problem()}};
    for (std::string& problem : _errorLog.latest()) {
        found.emplace_back("problem", std::move(problem));
    }
    return found;
}

/// Passes on to the panel what has changed; puts the item on the bus once everything about it is known.
void LinuxDesktop::settle() {
    _restartAfterLock.look();
    _holding.gate.look();
    if (!_statusItem) {
        return;
    }
    if (!_menu) {
        _menu.emplace(_sessionBus.get(), StatusNotifierItem::menuPath,
                      [this](std::function<void()> pick) { _loop.post(std::move(pick)); });
    }
    const StatusContent& content = statusContent();
    if (std::exchange(_isMenuOld, false)) {
        _menu->show(_statusItem->menu());
    }
    _statusWindow.show(content, _statusItem->menu());
    if (_statusNotifierItem) {
        _statusNotifierItem->show(content);
    } else {
        _statusNotifierItem.emplace(
            _sessionBus.get(), _resources, content,
            [this](bool isPresent) { _traylessNotice.trayChanged(isPresent); }, [this] { _statusWindow.open(); },
            _activationToken, _errorLog);
    }
    _look();
}

std::optional<TimeInterval> LinuxDesktop::secondsUntilBreak() { return secondsUntilBreak(_loop.latestOneShot()); }

std::optional<TimeInterval> LinuxDesktop::secondsUntilBreak(const std::optional<EventLoop::OneShot>& timer) {
    const TimeInterval now = secondsSinceBoot();
    if (timer && !_isBreakDue()) {
        _breakSinceBoot = now + timer->secondsLeft;
    }
    return _breakSinceBoot ? std::optional{*_breakSinceBoot - now} : std::nullopt;
}

const StatusContent& LinuxDesktop::statusContent() {
    const NSStatusBarButton& button = *_statusItem->button();
    const NSAttributedString& title = button.attributedTitle();
    const auto timer = _loop.latestOneShot();
    const std::optional<TimeInterval> secondsLeft = secondsUntilBreak(timer);
    _statusContent.text = title.string;
    _statusContent.colour = title.foregroundColor;
    _statusContent.image = button.image() ? std::string_view{button.image()->name()} : std::string_view{};
    _statusContent.shareLeft = shareLeft(secondsLeft, timer);
    putWords(secondsLeft);
    return _statusContent;
}

void LinuxDesktop::putWords(const std::optional<TimeInterval>& secondsLeft) {
    std::string& words = _statusContent.words;
    if (secondsLeft) {
        putInWords(words, *secondsLeft);
    } else {
        words = "Marvelode Timer";
    }
    if (const std::string& reason = holdReason(); !reason.empty()) {
        words.append(" (held: ").append(reason).append(")");
    }
}

/// The bar is full again once the break is due.
std::optional<double> LinuxDesktop::shareLeft(const std::optional<TimeInterval>& secondsLeft,
                                              const std::optional<EventLoop::OneShot>& timer) {
    if (secondsLeft && *secondsLeft <= 0) {
        return 1.0;
    }
    return secondsLeft && timer ? std::optional{std::min(*secondsLeft / timer->interval, 1.0)} : std::nullopt;
}

std::optional<DefaultsValue> LinuxDesktop::defaultsValue(std::string_view key) {
    if (const auto found = _argumentDomain.find(key); found != _argumentDomain.end()) {
        return found->second;
    }
    return _settings.value(key);
}

} // namespace platform::linux
