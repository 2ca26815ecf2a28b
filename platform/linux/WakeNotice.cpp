#include "platform/linux/WakeNotice.hpp"

#include <algorithm>
#include <utility>

namespace platform::linux {

using namespace std::chrono_literals;
using std::chrono::nanoseconds;

nanoseconds timeBy(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return std::chrono::seconds{time.tv_sec} + nanoseconds{time.tv_nsec};
}

WakeNotice::WakeNotice(std::function<void()> didWake, Clock clock)
    : _didWake{std::move(didWake)}
    , _clock{std::move(clock)}
    , _asleep{timeAsleep()} {}

void WakeNotice::look() {
    if (hasSlept()) {
        _unheard = _clock(CLOCK_MONOTONIC);
        _didWake();
    }
}

void WakeNotice::hear() {
    const auto told = std::exchange(_unheard, std::nullopt);
    if (hasSlept() || !told || _clock(CLOCK_MONOTONIC) - *told > latestSignal) {
        _didWake();
    }
}

/// Never too much: when the program is stopped between the two readings, the later one only makes it less.
nanoseconds WakeNotice::timeAsleep() const {
    const nanoseconds withSleep = _clock(CLOCK_BOOTTIME);
    return withSleep - _clock(CLOCK_MONOTONIC);
}

bool WakeNotice::hasSlept() {
    const nanoseconds before = _asleep;
    _asleep = std::max(_asleep, timeAsleep());
    return _asleep - before > 2s;
}

} // namespace platform::linux
