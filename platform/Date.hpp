#pragma once

// Instants of the wall clock and the spans between them. The clock can be set by the user at any time, so a date
// says when something is due, never how long to wait: waiting is a `Timer`'s business.

#include <compare>

namespace platform {

/// A span of time in seconds; negative spans point into the past.
using TimeInterval = double;

/// An instant of the wall clock, compared and subtracted as a number of seconds.
class Date {
public:
    /// The desktop's current wall-clock time.
    static Date now();

    /// The instant `seconds` after the beginning of 1970, UTC.
    explicit constexpr Date(TimeInterval seconds)
        : _secondsSince1970{seconds} {}

    /// Seconds since the beginning of 1970, UTC.
    constexpr TimeInterval timeIntervalSince1970() const { return _secondsSince1970; }

    friend constexpr Date operator+(Date date, TimeInterval span) { return Date{date._secondsSince1970 + span}; }
    friend constexpr TimeInterval operator-(Date later, Date earlier) {
        return later._secondsSince1970 - earlier._secondsSince1970;
    }
    friend constexpr auto operator<=>(Date, Date) = default;

private:
    TimeInterval _secondsSince1970;
};

} // namespace platform
