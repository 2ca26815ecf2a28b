// Settings from the command line, one word in each line of the input, and every value as each type.

#include "platform/UserDefaults.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using fuzz::require;

std::vector<std::string> wordsOf(std::string_view input) {
    std::vector<std::string> words;
    while (!input.empty()) {
        const fuzz::Parts parts = fuzz::cut(input, "\n");
        words.emplace_back(parts.first);
        input = parts.second;
    }
    return words;
}

/// Whether `words` hold the key with a dash and the value next to each other.
bool holdPair(const std::vector<std::string>& words, const std::string& key, const std::string& value) {
    for (std::size_t index = 1; index < words.size(); ++index) {
        if (words[index - 1] == "-" + key && words[index] == value) {
            return true;
        }
    }
    return false;
}

void checkNumber(std::int64_t number) {
    const std::string text = platform::stringFromDefaults(number);
    require(platform::integerFromDefaults(text) == number, "an integer as text is the same integer");
    require(platform::boolFromDefaults(text) == (number != 0), "an integer as text is as true as the integer");
    const auto fraction = static_cast<double>(number);
    require(std::strtod(platform::stringFromDefaults(fraction).c_str(), nullptr) == fraction,
            "a fraction as text is the same fraction");
}

/// The fraction that `value` stands for, in or out of the range of integers.
void checkFraction(const std::string& value) {
    const double fraction = std::strtod(value.c_str(), nullptr);
    const std::string text = platform::stringFromDefaults(fraction);
    require(std::isnan(fraction) || std::strtod(text.c_str(), nullptr) == fraction, "a fraction keeps its value");
    const std::int64_t whole = platform::integerFromDefaults(fraction);
    require(std::isnan(fraction) || std::abs(fraction) > 9e18 || static_cast<double>(whole) == std::trunc(fraction),
            "the integer of a fraction is what stands before its point");
}

} // namespace

void fuzz::check(std::string_view input) {
    const std::vector<std::string> words = wordsOf(input);
    for (const auto& [key, value] : platform::argumentDomain(words)) {
        require(!key.empty() && std::isalpha(static_cast<unsigned char>(key[0])), "a key begins with a letter");
        require(holdPair(words, key, value), "a value stands behind its key");
        checkNumber(platform::integerFromDefaults(value));
        checkFraction(value);
    }
}
