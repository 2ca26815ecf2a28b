#include "tests/support/ShortSeconds.hpp"

#include <glib.h>

namespace {

constexpr guint usual = 1000;
guint millisecondsPerSecond = usual;

} // namespace

ShortSeconds::ShortSeconds(std::chrono::milliseconds second) {
    millisecondsPerSecond = static_cast<guint>(second.count());
}

ShortSeconds::~ShortSeconds() { millisecondsPerSecond = usual; }

/// Called in place of the function without the prefix; the linker sees to that.
// NOLINTNEXTLINE(bugprone-reserved-identifier): the linker's name for it
extern "C" guint __wrap_g_timeout_add_seconds(guint interval, GSourceFunc function, gpointer data) {
    return g_timeout_add(interval * millisecondsPerSecond, function, data);
}
