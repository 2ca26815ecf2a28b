#pragma once

// Listens to the login manager on the system bus for the machine's waking from sleep. The bus and the manager may
// be missing, come late or restart.

#include "platform/linux/Handles.hpp"

#include <functional>

namespace platform::freedesktop {

class WakeWatcher {
public:
    /// Calls `didWake` from the main loop after each sleep from now on.
    explicit WakeWatcher(std::function<void()> didWake);
    ~WakeWatcher();
    WakeWatcher(const WakeWatcher&) = delete;
    WakeWatcher& operator=(const WakeWatcher&) = delete;

private:
    void connect();
    void listen(GDBusConnection* systemBus);
    void connectLater();
    void letGo();

    std::function<void()> _didWake;
    ObjectHandle<GDBusConnection> _systemBus;
    unsigned _subscription = 0;
    unsigned long _closedHandler = 0;
    unsigned _retry = 0;
};

} // namespace platform::freedesktop
