#pragma once

// Listens for how long the session was locked. Lockers tell of it on the session bus, the login manager on the
// system bus; the session is locked while any of them says so.

#include "platform/Date.hpp"
#include "platform/linux/glib/BusCall.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace platform::linux {

class LockWatcher {
public:
    /// Calls `unlocked` with the seconds since the session was locked, by a clock that counts sleep, when it is
    /// unlocked.
    LockWatcher(GDBusConnection* sessionBus, std::function<TimeInterval()> secondsSinceBoot,
                std::function<void(TimeInterval wasLocked)> unlocked);
    ~LockWatcher();
    LockWatcher(const LockWatcher&) = delete;
    LockWatcher& operator=(const LockWatcher&) = delete;

    /// Listens to the login manager as well, once there is a system bus.
    void listenTo(GDBusConnection* systemBus);

private:
    struct Locker {
        LockWatcher& watcher;
        std::string name;
        unsigned change = 0;
        unsigned owner = 0;
    };

    void listenTo(Locker& locker);
    void askLoginManager();
    void tell(const std::string& locker, bool isLocked);

    ObjectHandle<GDBusConnection> _sessionBus;
    std::function<TimeInterval()> _secondsSinceBoot;
    std::function<void(TimeInterval)> _unlocked;
    std::vector<Locker> _lockers;
    ObjectHandle<GDBusConnection> _systemBus;
    unsigned _hint = 0;
    BusCall _question;
    std::set<std::string> _lockedBy;
    TimeInterval _since = 0;
};

} // namespace platform::linux
