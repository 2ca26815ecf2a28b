#pragma once

// A session bus and a stand-in for the system bus that belong to the test process alone, and GLib's way of
// answering and waiting on them.

#include "platform/linux/glib/Handles.hpp"

#include <chrono>
#include <functional>
#include <string>

/// A new connection to the private session bus. Made anew each time, so that the ends of a conversation differ.
platform::linux::ObjectHandle<GDBusConnection> connectToSession();

/// A new connection to the bus that the process takes for the system bus.
platform::linux::ObjectHandle<GDBusConnection> connectToSystem();

/// Ends the system bus, and starts another in its place.
void stopSystemBus();
void startSystemBus();

/// Keeps the session bus from saying or hearing anything as long as this exists.
class SilentSessionBus {
public:
    SilentSessionBus();
    ~SilentSessionBus();
    SilentSessionBus(const SilentSessionBus&) = delete;
    SilentSessionBus& operator=(const SilentSessionBus&) = delete;
};

/// Takes that name on the bus for the connection's lifetime.
void takeName(GDBusConnection* bus, const char* name);

/// Runs the main loop until somebody on the system bus listens for the login manager's word of sleep.
void awaitListenerForSleep();

/// Runs the main loop until `isDone` or for a few seconds; whether it is done.
bool runLoopUntil(const std::function<bool()>& isDone);

/// Runs the main loop for that long.
void runLoopFor(std::chrono::milliseconds span);

/// Calls a method whose answer may come from this very process; nothing if it fails, with the reason in `error`.
platform::linux::VariantHandle call(GDBusConnection* from, const std::string& to, const char* path,
                                    const char* interface, const char* method, GVariant* arguments,
                                    std::string* error = nullptr);
