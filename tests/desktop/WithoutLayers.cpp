// Preloaded into a program on Wayland, hides from it that the compositor has layers. Many have none, but those do
// not run on virtual screens.

extern "C" {

int gtk_layer_is_supported() { return 0; }

} // extern "C"
