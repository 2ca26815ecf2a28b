#pragma once

// Listens to the login manager on the system bus for the machine's waking from sleep. Bus and manager may be
// missing, come late, restart or never answer: connecting happens beside the main loop, which never waits for it.

#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <chrono>
#include <functional>
#include <optional>

namespace platform::linux {

class WakeWatcher {
public:
    /// Calls `didWake` from the main loop after each sleep from now on. An attempt to connect is given up for the
    /// next one after `patience`, and a bus that went away is looked for again after that time.
    explicit WakeWatcher(std::function<void()> didWake, std::chrono::seconds patience = std::chrono::minutes{1});
    ~WakeWatcher();
    WakeWatcher(const WakeWatcher&) = delete;
    WakeWatcher& operator=(const WakeWatcher&) = delete;

private:
    void connect();
    void connectLater();
    void listen(ObjectHandle<GDBusConnection> systemBus);
    void letGo();

    std::function<void()> _didWake;
    const std::chrono::seconds _patience;
    DelayedCall _nextAttempt;
    std::optional<CancelledAtEnd> _attempt;
    ObjectHandle<GDBusConnection> _systemBus;
    unsigned _subscription = 0;
    unsigned long _closedHandler = 0;
};

} // namespace platform::linux
