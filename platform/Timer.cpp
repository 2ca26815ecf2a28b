#include "platform/Timer.hpp"

#include "platform/Desktop.hpp"

#include <utility>

namespace platform {

Date Date::now() { return desktop().now(); }

Timer::Timer(TimeInterval interval, Action action, std::any userInfo, bool repeats)
    : _interval{interval}
    , _action{std::make_shared<const Action>(std::move(action))}
    , _userInfo{std::move(userInfo)}
    , _repeats{repeats} {}

std::shared_ptr<Timer> Timer::scheduledTimer(TimeInterval interval, Action action, std::any userInfo,
                                             bool repeats) {
    struct Constructible : Timer {
        Constructible(TimeInterval interval, Action action, std::any userInfo, bool repeats)
            : Timer{interval, std::move(action), std::move(userInfo), repeats} {}
    };
    std::shared_ptr<Timer> timer =
        std::make_shared<Constructible>(interval, std::move(action), std::move(userInfo), repeats);
    desktop().schedule(timer);
    return timer;
}

void Timer::invalidate() {
    if (!_isValid) {
        return;
    }
    _isValid = false;
    const auto released = std::exchange(_action, nullptr); // may own the owners of this timer
    desktop().cancel(*this);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): keeps the timer, whatever its action lets go of
void Timer::fire(std::shared_ptr<Timer> timer) {
    const auto action = timer->_action; // stays, also if the action invalidates the timer
    (*action)(timer);
    if (!timer->_repeats) {
        timer->invalidate();
    }
}

} // namespace platform
