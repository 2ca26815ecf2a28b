#pragma once

// The program's run loop on GLib's main context: timers, work to be done later, and the settling of changes after
// each event. It wakes only for what is due; for the refresh of the text alone it may wake a little late, together
// with other programs.

#include "platform/TimerQueue.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace platform::linux {

class EventLoop {
public:
    /// `mode` is asked before timers fire; `settle` is called after each event, `begin` ahead of its timers.
    EventLoop(std::function<RunLoopMode()> mode, std::function<void()> settle, std::function<void()> begin = [] {});
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    /// Runs until `quit()`; returns at once if that came first.
    void run();

    /// Waits for the next event and handles what is due; may be called from inside an event.
    void iterate();

    /// Makes `run()` return after the current event.
    void quit() { _isOver = true; }

    void schedule(const std::shared_ptr<Timer>& timer);
    void cancel(const Timer& timer) { _timers.remove(timer); }

    /// The latest one-shot timer, as long as it is pending.
    struct OneShot {
        TimeInterval secondsLeft; ///< Until it fires; negative while its mode keeps it waiting.
        TimeInterval interval;    ///< From its start until it fires.
    };
    std::optional<OneShot> latestOneShot() const;

    /// Calls `settle` in the next turn, once for all requests, even those that `settle` itself makes. For events
    /// that are not this loop's own.
    void settleSoon() { _isUnsettled = true; }

    /// Runs `work` as an event of its own; work that is left when `run()` returns is destroyed undone.
    void post(std::function<void()> work) { _posted.push_back(std::move(work)); }

private:
    struct Source;
    using SourceHandle = std::unique_ptr<GSource, Release<g_source_unref>>;

    bool hasWork() const { return _isUnsettled || !_posted.empty(); }
    int millisecondsToWait() const;
    void handle();

    std::function<RunLoopMode()> _mode;
    std::function<void()> _settle;
    std::function<void()> _begin;
    TimerQueue _timers{RepeatingTimersDuringModal::Fire}; // the text goes on counting behind an open window
    std::weak_ptr<Timer> _latestOneShot;
    TimerQueue::Instant _latestOneShotDue{};
    std::deque<std::function<void()>> _posted;
    bool _isUnsettled = false;
    bool _isOver = false;
    SourceHandle _timersSource;
    SourceHandle _workSource;
};

} // namespace platform::linux
