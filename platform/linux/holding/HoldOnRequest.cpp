#include "platform/linux/holding/HoldOnRequest.hpp"

#include "platform/linux/glib/Handles.hpp"

#include <utility>

namespace platform::linux {
namespace {

using TimeHandle = std::unique_ptr<GDateTime, Release<g_date_time_unref>>;

/// The time of day after that span, in the user's time zone; empty if the system does not know it.
std::string timeOfDayAfter(std::chrono::seconds span) {
    const TimeHandle now{g_date_time_new_now_local()};
    const TimeHandle end{now ? g_date_time_add_seconds(now.get(), static_cast<double>(span.count())) : nullptr};
    const TextHandle text{end ? g_date_time_format(end.get(), "%H:%M") : nullptr};
    return text ? text.get() : "";
}

} // namespace

HoldOnRequest::HoldOnRequest(std::function<TimeInterval()> secondsSinceBoot)
    : _secondsSinceBoot{std::move(secondsSinceBoot)} {}

void HoldOnRequest::begin(std::chrono::seconds span) {
    _end = _secondsSinceBoot() + static_cast<TimeInterval>(span.count());
    _reason = "on request until " + timeOfDayAfter(span);
}

void HoldOnRequest::end() {
    _end.reset();
    _reason.clear();
}

const std::string& HoldOnRequest::reason() {
    if (_end && _secondsSinceBoot() >= *_end) {
        end();
    }
    return _reason;
}

} // namespace platform::linux
