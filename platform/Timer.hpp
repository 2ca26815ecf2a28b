#pragma once

// Run-loop timers. A timer lives in the run loop's default mode: it does not fire while an alert or a modal panel
// is up, and one that fell due meanwhile fires when that ends.

#include "platform/Date.hpp"

#include <any>
#include <functional>
#include <memory>

namespace platform {

/// One scheduled call of an action, or a repeating one; compared by identity.
class Timer {
public:
    using Action = std::function<void(const std::shared_ptr<Timer>& fired)>;

    /// Schedules `action` on the desktop's run loop, `interval` seconds from now; an interval of zero or less is
    /// due at once. A repeating timer that is late fires once and keeps its phase. The run loop owns the timer
    /// until it is invalidated; no timer fires inside its own action.
    static std::shared_ptr<Timer> scheduledTimer(TimeInterval interval, Action action, std::any userInfo,
                                                 bool repeats);

    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    /// False once the timer was invalidated; a one-shot timer invalidates itself after its action has returned.
    bool isValid() const { return _isValid; }

    /// Takes the timer off the run loop for good and destroys its action; does nothing to a timer that is no longer
    /// valid.
    void invalidate();

    /// What was given when the timer was scheduled.
    const std::any& userInfo() const { return _userInfo; }

    /// Seconds between scheduling and firing, and between firings.
    TimeInterval interval() const { return _interval; }

    bool repeats() const { return _repeats; }

    /// For desktops: runs the action, then invalidates a one-shot timer. The timer must be valid.
    static void fire(std::shared_ptr<Timer> timer);

private:
    Timer(TimeInterval interval, Action action, std::any userInfo, bool repeats);

    TimeInterval _interval;
    std::shared_ptr<const Action> _action; ///< Shared by each firing, which it must outlast.
    std::any _userInfo;
    bool _repeats;
    bool _isValid = true;
};

} // namespace platform
