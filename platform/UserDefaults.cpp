#include "platform/UserDefaults.hpp"

#include "platform/Desktop.hpp"
#include "platform/Overloaded.hpp"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <utility>

namespace platform {
namespace {

std::string_view withoutLeadingSpace(std::string_view text) {
    const std::size_t start = text.find_first_not_of(" \t\n\r\f\v");
    return start == std::string_view::npos ? std::string_view{} : text.substr(start);
}

bool boolFromText(std::string_view text) {
    text = withoutLeadingSpace(text);
    if (text.starts_with('+') || text.starts_with('-')) {
        text.remove_prefix(1);
    }
    text.remove_prefix(std::min(text.find_first_not_of('0'), text.size()));
    return !text.empty() && std::string_view{"YyTt123456789"}.find(text.front()) != std::string_view::npos;
}

std::int64_t integerFromText(std::string_view text) {
    using Limits = std::numeric_limits<std::int64_t>;
    text = withoutLeadingSpace(text);
    if (text.starts_with('+') && !text.substr(1).starts_with('-')) {
        text.remove_prefix(1);
    }
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error == std::errc::result_out_of_range) {
        return text.starts_with('-') ? Limits::min() : Limits::max();
    }
    return number;
}

std::int64_t integerFromDouble(double number) {
    using Limits = std::numeric_limits<std::int64_t>;
    if (std::isnan(number)) {
        return 0;
    }
    if (number >= 9223372036854775808.0) {
        return Limits::max();
    }
    if (number < -9223372036854775808.0) {
        return Limits::min();
    }
    return static_cast<std::int64_t>(number);
}

/// The shortest decimal that stands for `number`.
std::string decimal(double number) {
    char text[32];
    int digits = std::numeric_limits<double>::digits10;
    do {
        std::snprintf(text, sizeof text, "%.*g", digits++, number);
    } while (std::strtod(text, nullptr) != number && digits <= std::numeric_limits<double>::max_digits10);
    return text;
}

} // namespace

bool boolFromDefaults(const DefaultsValue& value) {
    return std::visit(Overloaded{[](bool truth) { return truth; }, [](std::int64_t number) { return number != 0; },
                                 [](double number) { return number != 0; },
                                 [](const std::string& text) { return boolFromText(text); }},
                      value);
}

std::int64_t integerFromDefaults(const DefaultsValue& value) {
    return std::visit(Overloaded{[](bool truth) { return std::int64_t{truth}; },
                                 [](std::int64_t number) { return number; },
                                 [](double number) { return integerFromDouble(number); },
                                 [](const std::string& text) { return integerFromText(text); }},
                      value);
}

std::string stringFromDefaults(const DefaultsValue& value) {
    return std::visit(Overloaded{[](bool truth) { return std::string{truth ? "1" : "0"}; },
                                 [](const std::string& text) { return text; },
                                 [](std::int64_t number) { return std::to_string(number); },
                                 [](double number) { return decimal(number); }},
                      value);
}

std::map<std::string, std::string, std::less<>> argumentDomain(const std::vector<std::string>& arguments) {
    const auto isKey = [](const std::string& word) {
        return word.size() > 1 && word[0] == '-' && std::isalpha(static_cast<unsigned char>(word[1]));
    };
    std::map<std::string, std::string, std::less<>> domain;
    for (std::size_t index = 0; index + 1 < arguments.size(); ++index) {
        if (isKey(arguments[index]) && !isKey(arguments[index + 1])) {
            domain[arguments[index].substr(1)] = arguments[index + 1];
            ++index;
        }
    }
    return domain;
}

UserDefaults& UserDefaults::standard() {
    static UserDefaults defaults;
    return defaults;
}

bool UserDefaults::boolForKey(std::string_view key) const { return desktop().boolForKey(key); }

std::int64_t UserDefaults::integerForKey(std::string_view key) const { return desktop().integerForKey(key); }

std::optional<std::string> UserDefaults::stringForKey(std::string_view key) const {
    return desktop().stringForKey(key);
}

void UserDefaults::set(DefaultsValue value, std::string_view key) { desktop().setDefault(std::move(value), key); }

} // namespace platform
