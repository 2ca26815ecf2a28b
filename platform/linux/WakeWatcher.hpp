#pragma once

// Listens to the login manager on the system bus for the machine's waking from sleep. The manager may come late or
// restart; a bus that is missing, goes away or never answers is not looked for again, since the clocks tell as
// well.

#include "platform/linux/glib/Handles.hpp"

#include <functional>

namespace platform::linux {

class WakeWatcher {
public:
    /// Calls `didWake` from the main loop when the login manager tells of a wake from now on. Connecting to the bus
    /// happens beside the main loop, which never waits for it.
    explicit WakeWatcher(std::function<void()> didWake);
    ~WakeWatcher();
    WakeWatcher(const WakeWatcher&) = delete;
    WakeWatcher& operator=(const WakeWatcher&) = delete;

    /// Whether there is a system bus to listen on.
    bool isConnected() const { return _systemBus && !g_dbus_connection_is_closed(_systemBus.get()); }

    /// The system bus for other questions; null while there is none.
    GDBusConnection* systemBus() const { return _systemBus.get(); }

private:
    void listen(ObjectHandle<GDBusConnection> systemBus);

    std::function<void()> _didWake;
    CancelledAtEnd _attempt;
    ObjectHandle<GDBusConnection> _systemBus;
    unsigned _subscription = 0;
};

} // namespace platform::linux
