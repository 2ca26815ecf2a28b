#pragma once

#include <glib.h>

namespace platform::linux {

/// Reads while it exists, in a thread of its own, which fonts there are and how they are chosen, so that Pango need
/// not. That takes about as long as setting up the toolkit. Neither the environment nor the locale may change
/// meanwhile: the thread reads both.
class FontReading {
public:
    /// Reads nothing if GDK is going to change the environment, or if no thread can be had.
    FontReading();
    /// Waits for the end.
    ~FontReading();
    FontReading(const FontReading&) = delete;
    FontReading& operator=(const FontReading&) = delete;

private:
    GThread* _thread = nullptr;
};

} // namespace platform::linux
