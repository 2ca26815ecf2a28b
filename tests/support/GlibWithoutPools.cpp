// To be preloaded: GLib says that it is the version in which it had no pools of its own any more.

extern "C" {
extern const unsigned glib_minor_version;
const unsigned glib_minor_version = 76;
}
