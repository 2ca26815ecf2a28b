#pragma once

// Notices each wake from sleep once, whoever tells of it first: the login manager by a signal, or two clocks of
// which one counts the time asleep. Where no signal comes, the clocks alone do.

#include <chrono>
#include <ctime>
#include <functional>
#include <optional>

namespace platform::linux {

/// The time by that clock of the system's, since an origin of its own.
std::chrono::nanoseconds timeBy(clockid_t clock);

class WakeNotice {
public:
    using Clock = std::function<std::chrono::nanoseconds(clockid_t)>;

    /// A signal that comes so much later than the clocks told may be of the same sleep still.
    static constexpr std::chrono::minutes latestSignal{1};

    /// Calls `didWake` at each wake from now on.
    explicit WakeNotice(std::function<void()> didWake, Clock clock = timeBy);

    /// Compares the clocks: a sleep of more than two seconds shows. Makes no call to the system.
    void look();

    /// Takes note that the login manager said the machine woke, however short the sleep.
    void hear();

private:
    std::chrono::nanoseconds timeAsleep() const;
    bool hasSlept();

    std::function<void()> _didWake;
    Clock _clock;
    std::chrono::nanoseconds _asleep; ///< Since the machine was started.
    std::optional<std::chrono::nanoseconds>
        _unheard; ///< When the clocks told of a sleep of which no signal came yet.
};

} // namespace platform::linux
