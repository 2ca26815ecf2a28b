#pragma once

// Begins a new interval when the session is unlocked after a lock as long as the user's settings name. As long as
// they name none, nobody is listened to.

#include "platform/linux/DesktopSettings.hpp"
#include "platform/linux/holding/LockWatcher.hpp"

#include <functional>
#include <optional>

namespace platform::linux {

class RestartAfterLock {
public:
    /// `settings` must outlive this object. `systemBus` returns null while there is none; `secondsSinceBoot` is a
    /// clock that counts sleep; `restart` is called from the main loop.
    RestartAfterLock(GDBusConnection* sessionBus, std::function<GDBusConnection*()> systemBus,
                     DesktopSettings& settings, std::function<TimeInterval()> secondsSinceBoot,
                     std::function<void()> restart);

    /// Takes note of the settings and of a system bus that has come. Called after each event.
    void look();

private:
    void unlocked(TimeInterval wasLocked);

    ObjectHandle<GDBusConnection> _sessionBus;
    std::function<GDBusConnection*()> _systemBus;
    DesktopSettings& _settings;
    std::function<TimeInterval()> _secondsSinceBoot;
    std::function<void()> _restart;
    std::optional<LockWatcher> _watcher;
};

} // namespace platform::linux
