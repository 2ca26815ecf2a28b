#pragma once

// A call on the bus whose answer takes its time.

#include <gio/gio.h>

#include <utility>

namespace platform::linux {

/// A call that is answered once: with success when there is any, or else, at the end of the last that could have
/// told of success, with an error.
class PendingCall {
public:
    /// Takes over `call`. `error` and `reason` are literals: the name of the error and its message.
    PendingCall(GDBusMethodInvocation* call, const char* error, const char* reason)
        : _call{call}
        , _error{error}
        , _reason{reason} {}
    ~PendingCall() {
        if (_call) {
            g_dbus_method_invocation_return_dbus_error(_call, _error, _reason);
        }
    }
    PendingCall(const PendingCall&) = delete;
    PendingCall& operator=(const PendingCall&) = delete;

    void succeed() {
        if (_call) {
            g_dbus_method_invocation_return_value(std::exchange(_call, nullptr), nullptr);
        }
    }

private:
    GDBusMethodInvocation* _call;
    const char* _error;
    const char* _reason;
};

} // namespace platform::linux
