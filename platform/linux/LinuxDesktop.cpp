#include "platform/linux/SessionDesktop.hpp"

#include "platform/linux/Journal.hpp"

#include <glib-unix.h>

#include <csignal>
#include <cstdio>
#include <utility>

namespace platform::freedesktop {
namespace {

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

} // namespace

Places Places::ofThisProcess() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::read_symlink("/proc/self/exe", error).parent_path();
    return {(folder / MARVELODE_RESOURCES_FROM_PROGRAM).lexically_normal(),
            (folder / MARVELODE_HELPERS_FROM_PROGRAM).lexically_normal(),
            std::filesystem::path{g_get_user_config_dir()} / "marvelode-timer" / "settings"};
}

SessionDesktop::SessionDesktop(GDBusConnection* sessionBus, Places places,
                               const std::vector<std::string>& arguments)
    : _sessionBus{G_DBUS_CONNECTION(g_object_ref(sessionBus))}
    , _argumentDomain{argumentDomain(arguments)}
    , _loop{[this] { return application.isModal() ? RunLoopMode::Modal : RunLoopMode::Default; },
            [this] { settle(); }}
    , _resources{std::move(places.resources)}
    , _settings{std::move(places.settings), [this](std::string_view problem) { logError(problem); }}
    , _windows{places.helpers / "marvelode-timer-window", [this] { _loop.iterate(); },
               [this](std::string_view problem) { logError(problem); },
               [this] { return std::exchange(_activationToken, {}); }}
    , _sounds{places.helpers / "marvelode-timer-sound", [this](std::string_view problem) { logError(problem); }}
    , _statusWindow{places.helpers / "marvelode-timer-window", [this](NSMenuItem& item) { pick(item.title); },
                    [this](std::string_view problem) { logError(problem); },
                    [this] { return std::exchange(_activationToken, {}); }}
    , _traylessNotice{sessionBus,
                      [this] { _statusWindow.appear(); },
                      [this] { _statusWindow.close(); },
                      [this] { _statusWindow.open(); },
                      [this](std::string_view entry) { pick(entry); },
                      [this](const char* token) { keepActivationToken(token); }} {
    g_dbus_connection_set_exit_on_close(sessionBus, FALSE);
    const auto busClosed = +[](GDBusConnection*, gboolean, GError*, SessionDesktop* self) { self->terminate(); };
    _busClosedHandler = g_signal_connect(sessionBus, "closed", G_CALLBACK(busClosed), this);
    const auto end = [](gpointer self) -> gboolean {
        static_cast<SessionDesktop*>(self)->terminate();
        return G_SOURCE_CONTINUE;
    };
    for (std::size_t index = 0; index < endingSignals.size(); ++index) {
        _signalSources[index] = g_unix_signal_add(endingSignals[index], end, this);
    }
}

SessionDesktop::~SessionDesktop() {
    for (const unsigned source : _signalSources) {
        g_source_remove(source);
    }
    g_signal_handler_disconnect(_sessionBus.get(), _busClosedHandler);
}

int SessionDesktop::run(int, const char* const*) {
    _loop.post([this] { // once the status item is on its way
        _wakeWatcher.emplace(
            [this] { workspaceNotifications.post(NotificationCenter::Name::NSWorkspaceDidWakeNotification); });
    });
    application.delegate->applicationDidFinishLaunching();
    _loop.run();
    g_dbus_connection_flush_sync(_sessionBus.get(), nullptr, nullptr); // whoever asked for the end gets an answer
    return 0;
}

void SessionDesktop::terminate() {
    _loop.quit();
    _windows.closeAll();
}

void SessionDesktop::activate(bool) {} // windows come to the front by themselves

Date SessionDesktop::now() { return Date{static_cast<double>(g_get_real_time()) / G_USEC_PER_SEC}; }

void SessionDesktop::schedule(const std::shared_ptr<Timer>& timer) { _loop.schedule(timer); }

void SessionDesktop::cancel(const Timer& timer) { _loop.cancel(timer); }

void SessionDesktop::showStatusItem(const std::shared_ptr<NSStatusItem>& item) {
    _statusItem = item;
    _loop.settleSoon();
}

void SessionDesktop::statusItemChanged() { _loop.settleSoon(); }

int SessionDesktop::runAlert(NSAlert& alert) { return _windows.runAlert(alert); }

void SessionDesktop::runModal(NSPanel& panel, const View& content) { _windows.runModal(panel, content); }

void SessionDesktop::stopModal() { _windows.stopModal(); }

void SessionDesktop::center(NSPanel&) {} // every window opens in the middle of the screen

void SessionDesktop::close(NSPanel& panel) {
    if (panel.delegate) {
        panel.delegate->windowWillClose();
    }
}

bool SessionDesktop::boolForKey(std::string_view key) {
    const std::optional<DefaultsValue> value = defaultsValue(key);
    return value && boolFromDefaults(*value);
}

std::int64_t SessionDesktop::integerForKey(std::string_view key) {
    const std::optional<DefaultsValue> value = defaultsValue(key);
    return value ? integerFromDefaults(*value) : 0;
}

std::optional<std::string> SessionDesktop::stringForKey(std::string_view key) {
    const std::optional<DefaultsValue> value = defaultsValue(key);
    return value ? std::optional{stringFromDefaults(*value)} : std::nullopt;
}

void SessionDesktop::setDefault(DefaultsValue value, std::string_view key) { _settings.set(std::move(value), key); }

std::optional<std::filesystem::path> SessionDesktop::resource(std::string_view name, std::string_view extension) {
    return _resources.find(name, extension);
}

std::optional<std::string> SessionDesktop::contentsOf(const std::filesystem::path& url) {
    return contentsOfFile(url);
}

std::optional<NSImage> SessionDesktop::imageNamed(std::string_view name) { return _resources.imageNamed(name); }

bool SessionDesktop::canPlay(const std::filesystem::path& url) { return _sounds.canPlay(url); }

bool SessionDesktop::play(const NSSound& sound) { return _sounds.play(sound.url); }

void SessionDesktop::beep() { _sounds.beep(); }

void SessionDesktop::print(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

bool SessionDesktop::isLogEnabled(const Logger&, Logger::Level) { return isJournalRunning(); }

void SessionDesktop::log(const Logger& logger, Logger::Level level, std::string_view message) {
    writeToJournal(logger, level, message);
}

void SessionDesktop::pick(std::string_view entry, std::function<void()> picked) {
    _loop.post([this, entry = std::string{entry}, picked = std::move(picked)] {
        const std::shared_ptr<NSMenu> menu = _statusItem ? _statusItem->menu() : nullptr;
        const std::shared_ptr<NSMenuItem> item = menu ? menu->itemWithTitle(entry) : nullptr;
        if (item && menu->validates(*item)) {
            _loop.post(picked); // runs first if the entry opens a window
            menu->performActionForItem(*item);
            picked();
        }
    });
}

void SessionDesktop::showMenuWindow() { _statusWindow.open(); }

std::string SessionDesktop::statusText() const {
    return _statusItem ? _statusItem->button()->attributedTitle().string : std::string{};
}

/// Passes on to the panel what has changed; puts the item on the bus once everything about it is known.
void SessionDesktop::settle() {
    if (!_statusItem) {
        return;
    }
    if (!_menu) {
        _menu.emplace(_sessionBus.get(), StatusNotifierItem::menuPath,
                      [this](std::function<void()> pick) { _loop.post(std::move(pick)); });
    }
    _menu->show(_statusItem->menu());
    _statusWindow.show(statusContent(), _statusItem->menu());
    if (_statusNotifierItem) {
        _statusNotifierItem->show(statusContent());
    } else {
        _statusNotifierItem.emplace(
            _sessionBus.get(), _resources, statusContent(),
            [this](bool isPresent) { _traylessNotice.trayChanged(isPresent); }, [this] { showMenuWindow(); },
            [this](const char* token) { keepActivationToken(token); },
            [this](std::string_view problem) { logError(problem); });
    }
}

StatusContent SessionDesktop::statusContent() const {
    const NSStatusBarButton& button = *_statusItem->button();
    const NSAttributedString& title = button.attributedTitle();
    // What is due is due: then the bar is full, in the text's own colour.
    return {title.string, title.foregroundColor, button.image() ? button.image()->name : std::string{},
            title.foregroundColor ? 1.0 : _loop.shareLeft(),
            _secondsLeft ? inWords(_secondsLeft()) : "Marvelode Timer"};
}

std::optional<DefaultsValue> SessionDesktop::defaultsValue(std::string_view key) {
    if (const auto found = _argumentDomain.find(key); found != _argumentDomain.end()) {
        return found->second;
    }
    return _settings.value(key);
}

/// Tells of a problem of the desktop's own: on standard error, and in the journal unless that is the same.
void SessionDesktop::logError(std::string_view problem) {
    std::fprintf(stderr, "marvelode-timer: %.*s\n", static_cast<int>(problem.size()), problem.data());
    if (isJournalRunning() && !g_log_writer_is_journald(fileno(stderr))) {
        writeToJournal(_logger, Logger::Level::Error, problem);
    }
}

} // namespace platform::freedesktop
