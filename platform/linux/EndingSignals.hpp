#pragma once

// The signals by which a session or a terminal ends this program.

#include <array>
#include <functional>

namespace platform::linux {

class EndingSignals {
public:
    /// Calls `end` from the main loop at each SIGTERM, SIGINT and SIGHUP, unless SIGHUP was ignored from the start.
    explicit EndingSignals(std::function<void()> end);
    ~EndingSignals();
    EndingSignals(const EndingSignals&) = delete;
    EndingSignals& operator=(const EndingSignals&) = delete;

private:
    std::function<void()> _end;
    std::array<unsigned, 3> _sources{}; ///< 0 for a signal that is ignored.
};

} // namespace platform::linux
