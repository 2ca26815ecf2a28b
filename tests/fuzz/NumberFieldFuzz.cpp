// What a user may type into a field for a number.

#include "platform/View.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <string>

namespace {

bool isDigit(char character) { return std::isdigit(static_cast<unsigned char>(character)) != 0; }

/// The C library's opinion, which takes more for numbers than the field does.
std::optional<std::int64_t> numberForCLibrary(std::string text) {
    text.erase(0, text.find_first_not_of(' '));
    text.erase(text.find_last_not_of(' ') + 1);
    const std::string digits = text.substr(text.starts_with('-') ? 1 : 0);
    if (digits.empty() || !std::all_of(digits.begin(), digits.end(), isDigit)) {
        return std::nullopt;
    }
    errno = 0;
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return errno == 0 ? std::optional{std::int64_t{number}} : std::nullopt;
}

} // namespace

void fuzz::check(std::string_view input) {
    const std::string text{input};
    const platform::NumberFormatter formatter;
    const std::optional<std::int64_t> number = formatter.number(text);
    require(number == numberForCLibrary(text), "the C library reads the same number");
    require(!number || formatter.number(formatter.string(*number)) == number, "a number shown is the number read");

    std::int64_t value = 25;
    const platform::Binding<std::int64_t> binding{[&] { return value; }, [&](std::int64_t next) { value = next; }};
    const platform::View field = platform::TextField("", binding, formatter);
    std::get<platform::node::TextField>(field.node).commit(text);
    require(value == number.value_or(25), "the value follows a number and nothing else");
}
