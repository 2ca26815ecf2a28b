#pragma once

// The desktop of a Linux session: what the program asks of a desktop, put together from the parts in this folder.
// It needs the session bus and nothing else; whatever else is missing is done without.

#include "platform/Desktop.hpp"
#include "platform/linux/ActivationToken.hpp"
#include "platform/linux/DesktopSettings.hpp"
#include "platform/linux/EndingSignals.hpp"
#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/EventLoop.hpp"
#include "platform/linux/Findings.hpp"
#include "platform/linux/HelperProgram.hpp"
#include "platform/linux/Places.hpp"
#include "platform/linux/Resources.hpp"
#include "platform/linux/SessionEnvironment.hpp"
#include "platform/linux/SettingsFile.hpp"
#include "platform/linux/WakeNotice.hpp"
#include "platform/linux/WakeWatcher.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "platform/linux/holding/Holding.hpp"
#include "platform/linux/holding/RestartAfterLock.hpp"
#include "platform/linux/sound/SoundPlayer.hpp"
#include "platform/linux/tray/MenuExport.hpp"
#include "platform/linux/tray/StatusNotifierItem.hpp"
#include "platform/linux/trayless/StatusWindow.hpp"
#include "platform/linux/trayless/TraylessNotice.hpp"
#include "platform/linux/window/WindowHelper.hpp"

#include <chrono>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {

class LinuxDesktop final : public Desktop {
public:
    /// `arguments` are the command line's, without the program's own name: settings among them are read ahead of
    /// stored ones. `assumedSettings` hold while there are stored ones that cannot be read.
    LinuxDesktop(GDBusConnection* sessionBus, Places places, const std::vector<std::string>& arguments,
                 SettingsFile::Values assumedSettings = {});
    ~LinuxDesktop() override;

    /// Returns when the program ends by itself, at SIGTERM, SIGINT or SIGHUP (unless that was ignored from the
    /// start), or with the session bus; always 0.
    int run(int argc, const char* const* argv) override;
    void terminate() override;
    void activate(bool ignoringOtherApps) override;

    Date now() override;
    void schedule(const std::shared_ptr<Timer>& timer) override;
    void cancel(const Timer& timer) override;

    void showStatusItem(const std::shared_ptr<NSStatusItem>& item) override;
    void statusItemChanged() override;
    void menuChanged() override;

    int runAlert(NSAlert& alert) override;
    void runModal(NSPanel& panel, const View& content) override;
    void stopModal() override;
    void center(NSPanel& panel) override;
    void close(NSPanel& panel) override;

    bool boolForKey(std::string_view key) override;
    std::int64_t integerForKey(std::string_view key) override;
    std::optional<std::string> stringForKey(std::string_view key) override;
    void setDefault(DefaultsValue value, std::string_view key) override;

    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) override;
    std::optional<std::string> contentsOf(const std::filesystem::path& url) override;
    std::optional<NSImage> imageNamed(std::string_view name) override;

    bool canPlay(const std::filesystem::path& url) override;
    bool play(const NSSound& sound) override;
    void beep() override;

    void print(std::string_view line) override;
    bool isLogEnabled(const Logger& logger, Logger::Level level) override;
    void log(const Logger& logger, Logger::Level level, std::string_view message) override;

    /// Picks the menu entry of that title from the event loop. `picked` is called once its action has run or its
    /// window is on the screen, or destroyed uncalled if the entry is disabled then or its window cannot be shown.
    void pick(std::string_view entry, std::function<void()> picked = [] {});

    /// Shows the status item and its menu as a window. `shown` is called once that is on the screen, or destroyed
    /// uncalled if it cannot be shown.
    void showMenuWindow(std::function<void()> shown);

    /// The session whose display windows are shown on.
    SessionEnvironment& session() { return _session; }

    /// The titles of the menu entries that a desktop without a panel offers in its message.
    void offerWithoutPanel(std::vector<std::string> entries) { _traylessNotice.offer(std::move(entries)); }

    /// What was handed out for the window that the user's next pick opens.
    ActivationToken& activationToken() { return _activationToken; }

    /// Takes the latest one-shot timer for the one that makes the break due, as long as `isBreakDue` says that the
    /// break is not; it is asked after each event.
    void watchBreak(std::function<bool()> isBreakDue) { _isBreakDue = std::move(isBreakDue); }

    /// Calls `look` after each event, once everything is on its way to the panel.
    void afterEachEvent(std::function<void()> look) { _look = std::move(look); }

    /// Seconds until the timer fires that makes the break due; negative once it is due. They are counted by the
    /// machine: setting the clock changes nothing. Nothing if there was no such timer yet.
    std::optional<TimeInterval> secondsUntilBreak();

    /// What the running program alone knows of itself and its desktop, for reports of faults.
    Findings findings();

    /// Holds reminders back for `span` from now, or no longer.
    void hold(std::chrono::seconds span);
    void release();

    /// Why reminders are held back; empty if they are not.
    const std::string& holdReason() { return _holding.reason(); }

    /// The text beside the icon.
    std::string statusText() const;

    /// A number that is another one once the stored settings may be; touches no disk.
    unsigned settingsState() const { return _settings.state(); }

private:
    void postWake() { workspaceNotifications.post(NotificationCenter::Name::NSWorkspaceDidWakeNotification); }
    GDBusConnection* systemBus() const { return _wakeWatcher ? _wakeWatcher->systemBus() : nullptr; }
    bool admitsReminder();
    bool makeSound(std::function<bool()> play);
    void settle();
    const StatusContent& statusContent();
    void putWords(const std::optional<TimeInterval>& secondsLeft);
    static std::optional<double> shareLeft(const std::optional<TimeInterval>& secondsLeft,
                                           const std::optional<EventLoop::OneShot>& timer);
    std::optional<TimeInterval> secondsUntilBreak(const std::optional<EventLoop::OneShot>& timer);
    std::optional<DefaultsValue> defaultsValue(std::string_view key);

    ObjectHandle<GDBusConnection> _sessionBus;
    std::map<std::string, std::string, std::less<>> _argumentDomain;
    StandardErrorLog _errorLog;
    WakeNotice _wakeNotice{[this] { postWake(); }};
    EventLoop _loop;
    Resources _resources;
    ActivationToken _activationToken;
    SettingsFile _settings;
    DesktopSettings _desktopSettings;
    SessionEnvironment _session;
    HelperProgram _windowProgram;
    HelperProgram _soundProgram;
    HelperProgram _holdProgram;
    WindowHelper _windows;
    SoundPlayer _sounds;
    HoldQuestion _holdQuestion;
    Holding _holding;
    RestartAfterLock _restartAfterLock;
    std::function<bool()> _isBreakDue = [] { return false; };
    std::function<void()> _look = [] {};
    std::optional<TimeInterval> _breakSinceBoot; ///< When the break comes or came due.
    std::shared_ptr<NSStatusItem> _statusItem;
    StatusContent _statusContent; ///< Filled anew after each event, in place: most change nothing in it.
    std::optional<MenuExport> _menu;
    bool _isMenuOld = false; ///< Whether the panel is to be told of a change in it.
    StatusWindow _statusWindow;
    TraylessNotice _traylessNotice;
    std::optional<StatusNotifierItem> _statusNotifierItem;
    std::optional<WakeWatcher> _wakeWatcher;
    unsigned long _busClosedHandler;
    std::optional<EndingSignals> _endingSignals;
};

} // namespace platform::linux
