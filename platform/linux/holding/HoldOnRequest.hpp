#pragma once

// A hold that somebody asked for, by a span of time. It is counted by the machine and goes on while that sleeps.

#include "platform/Date.hpp"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace platform::linux {

class HoldOnRequest {
public:
    /// `secondsSinceBoot` is a clock that counts sleep and cannot be set.
    explicit HoldOnRequest(std::function<TimeInterval()> secondsSinceBoot);

    /// Holds for `span` from now, whatever was asked for before.
    void begin(std::chrono::seconds span);
    void end();

    /// "on request until 15:04", or an empty text when there is no hold.
    const std::string& reason();

private:
    std::function<TimeInterval()> _secondsSinceBoot;
    std::optional<TimeInterval> _end;
    std::string _reason;
};

} // namespace platform::linux
