#include "platform/linux/StatusContent.hpp"

namespace platform::freedesktop {
namespace {

bool takePrefix(std::string_view& text, char prefix) {
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(1);
    return true;
}

} // namespace

std::string inWords(std::string_view text) {
    if (text.empty()) {
        return {};
    }
    if (text == "0" || text == "+0") {
        return "Break now";
    }
    const bool isDue = takePrefix(text, '+');
    if (text.empty()) {
        text = "1m"; // a bare sign stands for exactly a minute
    }
    const bool isMore = takePrefix(text, '>');
    const std::size_t digits = text.find_first_not_of("0123456789");
    const std::string number{text.substr(0, digits)};
    const std::string_view unitLetter = digits == std::string_view::npos ? "" : text.substr(digits);
    const std::string unit = unitLetter == "h" ? "hour" : unitLetter == "m" ? "minute" : "second";
    return std::string{isDue ? "Break due for " : "Break in "} + (isMore ? "more than " : "") + number + " " +
           unit + (number == "1" ? "" : "s");
}

} // namespace platform::freedesktop
