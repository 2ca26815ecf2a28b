// A program that wakes up once a second and does nothing.

#include <glib.h>

int main() {
    g_timeout_add(1000, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
