#include "platform/linux/window/helper/Layers.hpp"

#include <gtk-layer-shell.h>

namespace platform::linux {

bool putInLayer(GtkWindow* window) {
    if (!gtk_layer_is_supported()) {
        return false;
    }
    gtk_layer_init_for_window(window);
    gtk_layer_set_namespace(window, "marvelode-timer");
    gtk_window_set_decorated(window, TRUE); // with shadow and corners, as anywhere else
    setIsInFront(window, true);
    return true;
}

bool isInLayer(GtkWindow* window) { return gtk_layer_is_layer_window(window) != FALSE; }

void setHasKeyboard(GtkWindow* window, bool hasKeyboard) {
    gtk_layer_set_keyboard_mode(window, hasKeyboard ? GTK_LAYER_SHELL_KEYBOARD_MODE_EXCLUSIVE
                                                    : GTK_LAYER_SHELL_KEYBOARD_MODE_NONE);
}

void setIsInFront(GtkWindow* window, bool isInFront) {
    if (isInLayer(window)) {
        // two layers, since compositors disagree about which of two windows in one is the upper
        gtk_layer_set_layer(window, isInFront ? GTK_LAYER_SHELL_LAYER_OVERLAY : GTK_LAYER_SHELL_LAYER_TOP);
        setHasKeyboard(window, isInFront);
    }
}

} // namespace platform::linux
