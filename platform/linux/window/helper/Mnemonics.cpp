#include "platform/linux/window/helper/Mnemonics.hpp"

#include <cstddef>

namespace platform::linux {
namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

char lowered(char letter) { return static_cast<char>(letter | 0x20); }

} // namespace

std::string Mnemonics::mark(const std::string& title) {
    const auto take = [&](bool onlyBeginnings) {
        for (std::size_t index = 0; index < title.size(); ++index) {
            const bool isBeginning = index == 0 || title[index - 1] == ' ';
            if (isLetter(title[index]) && (isBeginning || !onlyBeginnings) &&
                _taken.insert(lowered(title[index])).second) {
                return index;
            }
        }
        return std::string::npos;
    };
    std::size_t marked = take(true);
    if (marked == std::string::npos) {
        marked = take(false);
    }
    std::string result;
    for (std::size_t index = 0; index < title.size(); ++index) {
        if (index == marked || title[index] == '_') {
            result += '_';
        }
        result += title[index];
    }
    return result;
}

} // namespace platform::linux
