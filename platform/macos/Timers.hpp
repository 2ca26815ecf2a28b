#pragma once

// The program's timers on the current run loop. Each is an `NSTimer` in the default mode, so AppKit itself holds
// them back while an alert or a modal panel is up.

#include "platform/Timer.hpp"
#include "platform/macos/Retained.hpp"

#import <Foundation/Foundation.h>

#include <map>
#include <memory>

namespace macos {

class Timers {
public:
    Timers() = default;
    Timers(const Timers&) = delete;
    Timers& operator=(const Timers&) = delete;
    ~Timers();

    /// Schedules `timer` on the current run loop, which shares it until it is cancelled.
    void schedule(const std::shared_ptr<platform::Timer>& timer);

    /// Takes `timer` off the run loop; unknown timers are ignored.
    void cancel(const platform::Timer& timer);

private:
    std::map<const platform::Timer*, Retained<NSTimer>> _scheduled;
};

} // namespace macos
