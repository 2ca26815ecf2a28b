#pragma once

// The queue of pending timers, for desktops whose system brings no run-loop timers of its own. It knows no clock:
// its owner passes the monotonic time in and asks when to come back.

#include "platform/Timer.hpp"

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace platform {

/// What the run loop is doing, which decides whether timers may fire.
enum class RunLoopMode {
    Default, ///< The plain run loop: every timer fires.
    Modal,   ///< An alert or a modal panel is up: one-shot timers wait, repeating ones too unless told otherwise.
};

/// Whether repeating timers fire while an alert or a modal panel is up.
enum class RepeatingTimersDuringModal { Wait, Fire };

/// Pending timers in the order in which they fall due; those due at one instant keep the order of scheduling.
class TimerQueue {
public:
    /// A point on the monotonic clock, counted from an origin of the owner's choice.
    using Instant = std::chrono::nanoseconds;

    explicit TimerQueue(RepeatingTimersDuringModal policy)
        : _policy{policy} {}

    /// Adds `timer`, due its interval after `now`. The queue shares ownership until the timer is removed.
    void add(std::shared_ptr<Timer> timer, Instant now);

    /// Forgets `timer`; unknown timers are ignored.
    void remove(const Timer& timer);

    /// When the next timer that may fire in `mode` falls due; nothing if none is pending.
    std::optional<Instant> nextDue(RunLoopMode mode) const;

    /// How long after `nextDue` the owner may come back without making any timer later than it may be: a repeating
    /// timer by a twentieth of its interval, the others not at all.
    Instant tolerance(RunLoopMode mode) const;

    /// Whether anything but a repeating timer is due.
    bool isOneShotDue(Instant now, RunLoopMode mode) const;

    /// Fires every timer that is due at `now` and may fire in `mode`, each at most once. Actions may add and
    /// remove timers and may run a nested loop that calls this again; a timer never fires inside its own action.
    /// Returns whether any timer fired.
    bool fireDue(Instant now, RunLoopMode mode);

    bool isEmpty() const { return _entries.empty(); }

private:
    struct Entry {
        std::shared_ptr<Timer> timer;
        Instant due;
        Instant interval; // at least the shortest that a timer can have
        std::uint64_t order;
        std::uint64_t lastCall; // of `fireDue` in which it fired; 0 for none
        bool isFiring;
    };

    bool mayFire(const Entry& entry, RunLoopMode mode) const;
    static Instant latest(const Entry& entry);
    const Entry* next(RunLoopMode mode) const;
    Entry* find(const Timer& timer);

    RepeatingTimersDuringModal _policy;
    std::vector<Entry> _entries; // two or three timers exist at any time: a linear search beats any tree
    std::uint64_t _nextOrder = 0;
    std::uint64_t _calls = 0; // of `fireDue` so far
};

} // namespace platform
