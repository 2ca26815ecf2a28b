#include "statusbar/UXTime.hpp"

#include "platform/Fatal.hpp"

#include <cstdint>
#include <limits>

namespace marvelode {
namespace {

/// The integer part; stops the program where there is none.
std::int64_t truncated(double number) {
    constexpr double nextBelowLowest = -9223372036854777856.0; // the lowest integer itself still fits
    const bool fits = number > nextBelowLowest && number < 9223372036854775808.0;
    if (!fits) {
        platform::fatal();
    }
    return static_cast<std::int64_t>(number);
}

struct Units {
    explicit Units(platform::TimeInterval span)
        : seconds{truncated(span)}
        , minutes{truncated(span / 60)}
        , hours{truncated(span / 3600)} {}

    std::int64_t seconds;
    std::int64_t minutes;
    std::int64_t hours;
};

} // namespace

std::string UXTime::countdown(platform::TimeInterval seconds) {
    const Units units{seconds};
    if (units.minutes == std::numeric_limits<std::int64_t>::max()) {
        platform::fatal();
    }
    std::string text;
    if (seconds > 3600) {
        text += ">" + std::to_string(units.hours) + "h";
    }
    if (seconds > 10 && seconds <= 3600) {
        text += std::to_string(units.minutes + 1) + "m"; // counts the minute that has begun
    }
    if (seconds < 10) {
        text += std::to_string(units.seconds);
    }
    return text;
}

std::string UXTime::countup(platform::TimeInterval seconds) {
    const Units units{seconds};
    std::string text = "+";
    if (seconds > 3600) {
        text += ">" + std::to_string(units.hours) + "h";
    }
    if (seconds > 60 && seconds <= 3600) {
        text += std::to_string(units.minutes) + "m";
    }
    if (seconds < 60) {
        text += std::to_string(units.seconds);
    }
    return text;
}

} // namespace marvelode
