// Preloaded into the program that shows windows, has it find no layers on a compositor that has some, and pass its
// seconds ten times as fast.

#include <glib.h>

extern "C" gboolean gtk_layer_is_supported() { return FALSE; }

extern "C" guint g_timeout_add_seconds(guint interval, GSourceFunc function, gpointer data) {
    constexpr guint quickSecond = 100;
    return g_timeout_add(interval * quickSecond, function, data);
}
