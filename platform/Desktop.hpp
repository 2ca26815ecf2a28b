#pragma once

// Everything the program needs from a desktop: the verbs behind the platform types, implemented by LinuxDesktop,
// MacDesktop and SimulatedDesktop. Exactly one desktop exists while the program runs. All calls come from the main
// thread.

#include "platform/Date.hpp"
#include "platform/Logger.hpp"
#include "platform/NSAlert.hpp"
#include "platform/NSApplication.hpp"
#include "platform/NSImage.hpp"
#include "platform/NSPanel.hpp"
#include "platform/NSSound.hpp"
#include "platform/NSStatusItem.hpp"
#include "platform/NSWorkspace.hpp"
#include "platform/Timer.hpp"
#include "platform/UserDefaults.hpp"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

class Desktop {
public:
    /// Becomes the desktop of the program; throws `std::logic_error` if there is another.
    Desktop();
    virtual ~Desktop();
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    NSApplication application;
    NotificationCenter workspaceNotifications; ///< Desktops post the machine's waking here.

    // The run loop

    /// Calls the delegate's `applicationDidFinishLaunching()`, then runs the loop until `terminate()`; returns the
    /// process's status.
    virtual int run(int argc, const char* const* argv) = 0;

    /// Ends the run loop, and any modal session inside it.
    virtual void terminate() = 0;

    /// Brings the program's windows to the front.
    virtual void activate(bool ignoringOtherApps) = 0;

    /// Brings the program to the front, without its own help where the desktop tells the two apart.
    virtual void activateRunningApplication(bool ignoringOtherApps) { activate(ignoringOtherApps); }

    // Time

    /// The wall clock.
    virtual Date now() = 0;

    /// Schedules a new timer, with the rules that `Timer` promises; shares it until it is cancelled.
    virtual void schedule(const std::shared_ptr<Timer>& timer) = 0;

    /// Forgets a timer that was invalidated; it may be unknown already.
    virtual void cancel(const Timer& timer) = 0;

    // The status item

    /// Puts the program's one status item on screen.
    virtual void showStatusItem(const std::shared_ptr<NSStatusItem>& item) = 0;

    /// Called after each possible change of the status item.
    virtual void statusItemChanged() = 0;

    /// Called after each possible change of the status item's menu or of what can be picked in it.
    virtual void menuChanged() { statusItemChanged(); }

    // Windows

    /// Shows the alert and waits for the answer, as `NSAlert::runModal` promises; ticks its check box as the user
    /// does.
    virtual int runAlert(NSAlert& alert) = 0;

    /// Shows the panel with `content` and waits for `stopModal()`. When the user or the system closes the window,
    /// the desktop calls `NSPanel::close`. `content` lives until this returns.
    virtual void runModal(NSPanel& panel, const View& content) = 0;

    /// Ends the innermost `runModal`.
    virtual void stopModal() = 0;

    /// Centres the panel the next time it is shown.
    virtual void center(NSPanel& panel) = 0;

    /// Takes the panel off the screen and tells its delegate.
    virtual void close(NSPanel& panel) = 0;

    // Settings, with the conversions that `UserDefaults` promises

    virtual bool boolForKey(std::string_view key) = 0;
    virtual std::int64_t integerForKey(std::string_view key) = 0;
    virtual std::optional<std::string> stringForKey(std::string_view key) = 0;
    virtual void setDefault(DefaultsValue value, std::string_view key) = 0;

    // Resources

    virtual std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) = 0;
    virtual std::optional<std::string> contentsOf(const std::filesystem::path& url) = 0;
    virtual std::optional<NSImage> imageNamed(std::string_view name) = 0;

    // Sounds

    /// Whether the file at `url` is a sound that can be played.
    virtual bool canPlay(const std::filesystem::path& url) = 0;

    /// Starts the sound; false if it is playing already.
    virtual bool play(const NSSound& sound) = 0;
    virtual void beep() = 0;

    // Messages

    virtual void print(std::string_view line) = 0;
    virtual bool isLogEnabled(const Logger& logger, Logger::Level level) = 0;
    virtual void log(const Logger& logger, Logger::Level level, std::string_view message) = 0;
};

/// The desktop that exists; stops the program if there is none.
Desktop& desktop();

} // namespace platform
