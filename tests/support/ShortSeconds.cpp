#include "tests/support/ShortSeconds.hpp"

#include <gio/gio.h>

#include <cstdint>

namespace {

constexpr guint usual = 1000;
guint millisecondsPerSecond = usual;

} // namespace

ShortSeconds::ShortSeconds(std::chrono::milliseconds second) {
    millisecondsPerSecond = static_cast<guint>(second.count());
}

ShortSeconds::~ShortSeconds() { millisecondsPerSecond = usual; }

// The linker calls each function that begins with "__wrap_" in place of the one without that.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's name for it
extern "C" guint __wrap_g_timeout_add_seconds(guint interval, GSourceFunc function, gpointer data) {
    return g_timeout_add(interval * millisecondsPerSecond, function, data);
}

// NOLINTNEXTLINE(bugprone-reserved-identifier): as above
extern "C" void __real_g_dbus_connection_call(GDBusConnection* bus, const char* name, const char* path,
                                              const char* interface, const char* method, GVariant* parameters,
                                              const GVariantType* type, GDBusCallFlags flags, int milliseconds,
                                              GCancellable* cancellable, GAsyncReadyCallback called, gpointer data);

// NOLINTNEXTLINE(bugprone-reserved-identifier): as above
extern "C" void __wrap_g_dbus_connection_call(GDBusConnection* bus, const char* name, const char* path,
                                              const char* interface, const char* method, GVariant* parameters,
                                              const GVariantType* type, GDBusCallFlags flags, int milliseconds,
                                              GCancellable* cancellable, GAsyncReadyCallback called,
                                              gpointer data) {
    if (milliseconds > 0 && milliseconds != G_MAXINT) { // which stand for the usual timeout and for none
        milliseconds = static_cast<int>(std::int64_t{milliseconds} * millisecondsPerSecond / usual);
    }
    __real_g_dbus_connection_call(bus, name, path, interface, method, parameters, type, flags, milliseconds,
                                  cancellable, called, data);
}
