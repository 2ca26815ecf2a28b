#pragma once

// Seconds as short as a test wants them, for the timeouts that GLib counts in seconds and for those of calls on the
// bus. They last as long as this object, after which seconds are seconds again.

#include <chrono>

class ShortSeconds {
public:
    explicit ShortSeconds(std::chrono::milliseconds second);
    ~ShortSeconds();
    ShortSeconds(const ShortSeconds&) = delete;
    ShortSeconds& operator=(const ShortSeconds&) = delete;
};
