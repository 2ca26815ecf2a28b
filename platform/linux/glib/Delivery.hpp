#pragma once

// Waiting for what was sent over a bus. GLib's own flush needs a thread, and waits without end if none can be had.

#include <gio/gio.h>

namespace platform::linux {

/// Returns when everything that was sent over `bus` has reached it, at once if the connection is closed, and after
/// a second in any case.
void awaitDelivery(GDBusConnection* bus);

} // namespace platform::linux
