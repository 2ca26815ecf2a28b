// Makes every complaint of GLib's the end of the run: it means that one of its functions was called by mistake.

#include <glib.h>

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

/// GLib's parser calls itself by mistake when an escape such as '\ud800' stands for no character, and then refuses
/// the text as it should.
bool isAboutItself(std::string_view message) { return message.starts_with("g_variant_new_string: assertion"); }

[[maybe_unused]] const GLogFunc previous = g_log_set_default_handler(
    [](const char* domain, GLogLevelFlags, const char* message, gpointer) {
        if (!isAboutItself(message)) {
            std::fprintf(stderr, "%s: %s\n", domain ? domain : "GLib", message);
            std::abort();
        }
    },
    nullptr);

} // namespace
