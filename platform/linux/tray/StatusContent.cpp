#include "platform/linux/tray/StatusContent.hpp"

#include <cmath>
#include <cstdint>

namespace platform::linux {
namespace {

std::string counted(double number, const char* unit) {
    const auto whole = static_cast<std::int64_t>(number);
    return std::to_string(whole) + " " + unit + (whole == 1 ? "" : "s");
}

} // namespace

std::string inWords(TimeInterval secondsLeft) {
    constexpr TimeInterval minute = 60;
    constexpr TimeInterval hour = 3600;
    constexpr TimeInterval lastSeconds = 10;
    const bool isDue = secondsLeft < 0;
    const TimeInterval span = std::abs(secondsLeft);
    if (span < 1) {
        return "Break now";
    }
    const std::string beginning = isDue ? "Break due for " : "Break in ";
    if (span > hour) {
        return beginning + "more than " + counted(span / hour, "hour");
    }
    if (span < minute && (isDue || span <= lastSeconds)) {
        return beginning + counted(span, "second");
    }
    return beginning + counted(span / minute + (isDue ? 0 : 1), "minute"); // the minute that has begun is counted
}

} // namespace platform::linux
