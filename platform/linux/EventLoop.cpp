#include "platform/linux/EventLoop.hpp"

#include <sys/prctl.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <limits>
#include <utility>

namespace platform::linux {
namespace {

TimerQueue::Instant monotonicNow() { return std::chrono::microseconds{g_get_monotonic_time()}; }

constexpr TimerQueue::Instant usual{0}; // as the kernel has it: its own tolerance

/// The wait that the timers ask for, and how much longer it may take. GLib tells what waits how long, but not for
/// whom.
struct TimersWait {
    int milliseconds;
    TimerQueue::Instant tolerance;
} timersWait{};

/// Lets the kernel end the waits of this thread so much later. It is told of changes alone: from one tick to the
/// next there is none.
void tolerate(TimerQueue::Instant tolerance) {
    static TimerQueue::Instant inForce = usual;
    if (tolerance != std::exchange(inForce, tolerance)) {
        const int reason = errno; // for a wait that has failed, GLib's next question
        prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(tolerance.count()));
        errno = reason;
    }
}

/// Waits for what is due first: only what the timers allow may be late. A wait that ended with anything but their
/// time ends the tolerance as well.
int waitTolerantly(GPollFD* descriptors, unsigned count, int milliseconds) {
    const bool isForTimers = milliseconds > 0 && milliseconds == timersWait.milliseconds;
    tolerate(isForTimers ? timersWait.tolerance : usual);
    const int result = g_poll(descriptors, count, milliseconds);
    if (result != 0) {
        tolerate(usual);
    }
    return result;
}

} // namespace

/// GLib's view of the loop, asked before and after each wait: one source for the timers, run alone so that nothing
/// else inherits a tick's tolerance, and one for what is posted, which takes turns with all others.
struct EventLoop::Source {
    GSource base;
    EventLoop* loop;

    static EventLoop& loopOf(GSource* source) { return *reinterpret_cast<Source*>(source)->loop; }

    static gboolean prepareTimers(GSource* source, int* timeout) {
        const EventLoop& loop = loopOf(source);
        *timeout = loop.millisecondsToWait();
        timersWait = {*timeout, loop._timers.tolerance(loop._mode())};
        return *timeout == 0;
    }
    static gboolean checkTimers(GSource* source) {
        const bool isDue = loopOf(source).millisecondsToWait() == 0;
        if (!isDue) {
            tolerate(usual); // what the wait has ended for is no timer
        }
        return isDue;
    }
    static gboolean prepareWork(GSource* source, int* timeout) {
        *timeout = -1;
        return loopOf(source).hasWork();
    }
    static gboolean checkWork(GSource* source) { return loopOf(source).hasWork(); }
    static gboolean dispatch(GSource* source, GSourceFunc, gpointer) {
        loopOf(source).handle();
        return G_SOURCE_CONTINUE;
    }

    static SourceHandle attached(GSourceFuncs& functions, EventLoop* loop, int priority) {
        SourceHandle source{g_source_new(&functions, sizeof(Source))};
        reinterpret_cast<Source*>(source.get())->loop = loop;
        g_source_set_can_recurse(source.get(), TRUE); // an alert runs inside the action of a timer
        g_source_set_priority(source.get(), priority);
        g_source_attach(source.get(), nullptr);
        return source;
    }
    static SourceHandle forTimers(EventLoop* loop) {
        static GSourceFuncs functions{prepareTimers, checkTimers, dispatch, nullptr, nullptr, nullptr};
        return attached(functions, loop, G_PRIORITY_HIGH);
    }
    static SourceHandle forWork(EventLoop* loop) {
        static GSourceFuncs functions{prepareWork, checkWork, dispatch, nullptr, nullptr, nullptr};
        return attached(functions, loop, G_PRIORITY_DEFAULT);
    }
};

EventLoop::EventLoop(std::function<RunLoopMode()> mode, std::function<void()> settle, std::function<void()> begin)
    : _mode{std::move(mode)}
    , _settle{std::move(settle)}
    , _begin{std::move(begin)}
    , _timersSource{Source::forTimers(this)}
    , _workSource{Source::forWork(this)} {
    g_main_context_set_poll_func(nullptr, waitTolerantly);
}

EventLoop::~EventLoop() {
    tolerate(usual);
    g_main_context_set_poll_func(nullptr, nullptr);
    g_source_destroy(_timersSource.get());
    g_source_destroy(_workSource.get());
}

void EventLoop::run() {
    while (!_isOver) {
        iterate();
    }
    tolerate(usual);
    _posted.clear(); // whoever waits for it is told at once that it will not be done
}

void EventLoop::iterate() { g_main_context_iteration(nullptr, TRUE); }

void EventLoop::schedule(const std::shared_ptr<Timer>& timer) {
    const TimerQueue::Instant now = monotonicNow();
    _timers.add(timer, now);
    if (!timer->repeats()) {
        _latestOneShot = timer;
        _latestOneShotDue = now + std::chrono::duration_cast<TimerQueue::Instant>(
                                      std::chrono::duration<double>{std::clamp(timer->interval(), 0.0, 1e9)});
    }
}

std::optional<EventLoop::OneShot> EventLoop::latestOneShot() const {
    const std::shared_ptr<Timer> timer = _latestOneShot.lock();
    if (!timer || !timer->isValid()) {
        return std::nullopt;
    }
    const std::chrono::duration<double> left = _latestOneShotDue - monotonicNow();
    return OneShot{left.count(), timer->interval()};
}

/// Milliseconds until a timer is due, rounded up so that one wait is enough; -1 if none is.
int EventLoop::millisecondsToWait() const {
    const std::optional<TimerQueue::Instant> due = _timers.nextDue(_mode());
    if (!due) {
        return -1;
    }
    const auto wait = std::chrono::ceil<std::chrono::milliseconds>(*due - monotonicNow()).count();
    return static_cast<int>(std::clamp<std::int64_t>(wait, 0, std::numeric_limits<int>::max()));
}

void EventLoop::handle() {
    const TimerQueue::Instant now = monotonicNow();
    if (_timers.isOneShotDue(now, _mode())) {
        tolerate(usual);
    }
    _begin();
    _timers.fireDue(now, _mode());
    _isUnsettled = false;
    _settle(); // in any case: something may have changed with the time alone
    if (!_posted.empty()) {
        tolerate(usual);
        const std::function<void()> work = std::move(_posted.front());
        _posted.pop_front(); // first: the work may run an alert, and with it this loop
        work();
    }
}

} // namespace platform::linux
