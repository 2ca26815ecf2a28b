// To be preloaded: says, before the program itself begins, whether GLib keeps pools of freed memory in it.

#include <glib.h>
#include <malloc.h>

#include <array>
#include <cstdio>

namespace {

constexpr std::size_t size = 48;

/// Whether memory that is given back to GLib comes back to the C library.
bool comesBack() {
    std::array<gpointer, 1000> pieces{};
    for (gpointer& piece : pieces) {
        piece = g_slice_alloc(size);
    }
    const std::size_t before = mallinfo2().uordblks;
    for (void* const piece : pieces) {
        g_slice_free1(size, piece);
    }
    return before - mallinfo2().uordblks > pieces.size() * size / 2;
}

[[gnu::constructor]] void tell() {
    std::fputs(comesBack() ? "GLib keeps no pools\n" : "GLib keeps pools\n", stderr);
}

} // namespace
