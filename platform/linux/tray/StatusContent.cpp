#include "platform/linux/tray/StatusContent.hpp"

#include <cmath>
#include <cstdint>

namespace platform::linux {
namespace {

void appendCount(std::string& text, double number, const char* unit) {
    const auto whole = static_cast<std::int64_t>(number);
    text += std::to_string(whole);
    text += unit;
    text += whole == 1 ? "" : "s";
}

} // namespace

void putInWords(std::string& text, TimeInterval secondsLeft) {
    constexpr TimeInterval minute = 60;
    constexpr TimeInterval hour = 3600;
    constexpr TimeInterval lastSeconds = 10;
    const bool isDue = secondsLeft < 0;
    const TimeInterval span = std::abs(secondsLeft);
    if (span < 1) {
        text = "Break now";
        return;
    }
    text = isDue ? "Break due for " : "Break in ";
    if (span > hour) {
        text += "more than ";
        appendCount(text, span / hour, " hour");
    } else if (span < minute && (isDue || span <= lastSeconds)) {
        appendCount(text, span, " second");
    } else {
        appendCount(text, span / minute + (isDue ? 0 : 1), " minute"); // the minute that has begun is counted
    }
}

} // namespace platform::linux
