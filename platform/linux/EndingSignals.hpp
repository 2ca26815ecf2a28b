#pragma once

// The signals by which a session ends its programs, turned into an event of the main loop.

#include <functional>

namespace platform::freedesktop {

class EndingSignals {
public:
    /// Calls `end` from the main loop at SIGTERM, SIGINT and SIGHUP, as long as this object, the only one, lives.
    explicit EndingSignals(std::function<void()> end);
    ~EndingSignals();
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

private:
    std::function<void()> _end;
    unsigned _source;
};

} // namespace platform::freedesktop
