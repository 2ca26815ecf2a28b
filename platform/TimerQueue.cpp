#include "platform/TimerQueue.hpp"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>

namespace platform {
namespace {

using std::chrono::nanoseconds;

// A timer's shortest period, also that of an interval of zero or less: a tenth of a millisecond.
constexpr nanoseconds shortestPeriod{100'000};
// Far enough never to be reached and near enough never to overflow: a hundred years.
constexpr nanoseconds longestPeriod = std::chrono::hours{24 * 36'525};

nanoseconds period(TimeInterval seconds) {
    const double asNanoseconds = seconds * 1e9;
    if (!(asNanoseconds > static_cast<double>(shortestPeriod.count()))) {
        return shortestPeriod;
    }
    if (asNanoseconds >= static_cast<double>(longestPeriod.count())) {
        return longestPeriod;
    }
    return nanoseconds{std::llround(asNanoseconds)};
}

} // namespace

void TimerQueue::add(std::shared_ptr<Timer> timer, Instant now) {
    const nanoseconds interval = period(timer->interval());
    _entries.push_back({std::move(timer), now + interval, interval, _nextOrder++, 0, false});
}

void TimerQueue::remove(const Timer& timer) {
    std::erase_if(_entries, [&](const Entry& entry) { return entry.timer.get() == &timer; });
}

std::optional<TimerQueue::Instant> TimerQueue::nextDue(RunLoopMode mode) const {
    const Entry* entry = next(mode);
    return entry ? std::optional{entry->due} : std::nullopt;
}

TimerQueue::Instant TimerQueue::tolerance(RunLoopMode mode) const {
    const Entry* const first = next(mode);
    Instant last = first ? latest(*first) : Instant{0};
    for (const Entry& entry : _entries) {
        last = mayFire(entry, mode) ? std::min(last, latest(entry)) : last;
    }
    return first ? last - first->due : Instant{0};
}

bool TimerQueue::isOneShotDue(Instant now, RunLoopMode mode) const {
    return std::any_of(_entries.begin(), _entries.end(), [&](const Entry& entry) {
        return entry.due <= now && !entry.timer->repeats() && mayFire(entry, mode);
    });
}

bool TimerQueue::fireDue(Instant now, RunLoopMode mode) {
    // Timers scheduled from here on wait for the next call, so that no chain of them can hold the loop.
    const std::uint64_t newcomers = _nextOrder;
    const std::uint64_t call = ++_calls; // a later number marks what a nested call has fired
    bool hasFired = false;
    for (;;) {
        Entry* best = nullptr;
        for (Entry& entry : _entries) {
            const bool isCandidate =
                entry.due <= now && entry.order < newcomers && entry.lastCall < call && mayFire(entry, mode);
            if (isCandidate && (!best || std::tie(entry.due, entry.order) < std::tie(best->due, best->order))) {
                best = &entry;
            }
        }
        if (!best) {
            return hasFired;
        }
        const std::shared_ptr<Timer> timer = best->timer;
        hasFired = true;
        best->lastCall = call;
        best->isFiring = true;
        if (timer->repeats()) {
            best->due += best->interval * ((now - best->due) / best->interval + 1);
        }
        Timer::fire(timer); // may change the queue: look the entry up again
        if (Entry* entry = find(*timer)) {
            entry->isFiring = false;
        }
    }
}

bool TimerQueue::mayFire(const Entry& entry, RunLoopMode mode) const {
    const bool modeAllows =
        mode == RunLoopMode::Default || (entry.timer->repeats() && _policy == RepeatingTimersDuringModal::Fire);
    return modeAllows && !entry.isFiring;
}

/// When it is not late yet.
TimerQueue::Instant TimerQueue::latest(const Entry& entry) {
    constexpr int shareOfInterval = 20;
    return entry.timer->repeats() ? entry.due + entry.interval / shareOfInterval : entry.due;
}

const TimerQueue::Entry* TimerQueue::next(RunLoopMode mode) const {
    const Entry* best = nullptr;
    for (const Entry& entry : _entries) {
        if (mayFire(entry, mode) && (!best || entry.due < best->due)) {
            best = &entry;
        }
    }
    return best;
}

TimerQueue::Entry* TimerQueue::find(const Timer& timer) {
    const auto found = std::find_if(_entries.begin(), _entries.end(),
                                    [&](const Entry& entry) { return entry.timer.get() == &timer; });
    return found == _entries.end() ? nullptr : &*found;
}

} // namespace platform
