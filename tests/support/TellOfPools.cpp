// To be preloaded: says, before the program itself begins, whether GLib keeps pools of freed memory in it.

#include <glib.h>

#include <cstdio>

namespace {

[[gnu::constructor]] void tell() {
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    const bool keepsNone = g_slice_get_config(G_SLICE_CONFIG_ALWAYS_MALLOC) != 0;
    G_GNUC_END_IGNORE_DEPRECATIONS
    std::fputs(keepsNone ? "GLib keeps no pools\n" : "GLib keeps pools\n", stderr);
}

} // namespace
