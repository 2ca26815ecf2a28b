#pragma once

// Listens to the login manager on the system bus for the machine's waking from sleep. The bus and the manager may
// be missing, come late, restart or never answer; nobody waits for them.

#include "platform/linux/glib/Handles.hpp"

#include <chrono>
#include <functional>

namespace platform::linux {

class WakeWatcher {
public:
    /// Calls `didWake` from the main loop after each sleep from now on. A bus that is missing or has gone is looked
    /// for again `patience` later.
    explicit WakeWatcher(std::function<void()> didWake, std::chrono::seconds patience = std::chrono::minutes{1});
    ~WakeWatcher();
    WakeWatcher(const WakeWatcher&) = delete;
    WakeWatcher& operator=(const WakeWatcher&) = delete;

private:
    void connect();
    void enter();
    void listen(GDBusConnection* systemBus);
    void connectLater();
    void letGo();

    std::function<void()> _didWake;
    const std::chrono::seconds _patience;
    ObjectHandle<GIOStream> _door;
    unsigned _answer = 0;
    ObjectHandle<GDBusConnection> _systemBus;
    unsigned _subscription = 0;
    unsigned long _closedHandler = 0;
    unsigned _retry = 0;
};

} // namespace platform::linux
