#include "platform/Text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace platform {
namespace {

constexpr std::array<std::string_view, 7> lineEnds{"\n", "\r", "\v", "\f", "\u0085", "\u2028", "\u2029"};

// The tab and the characters of the category "separator, space".
constexpr std::array<std::string_view, 18> whitespace{"\t",     " ",      "\u00A0", "\u1680", "\u2000", "\u2001",
                                                      "\u2002", "\u2003", "\u2004", "\u2005", "\u2006", "\u2007",
                                                      "\u2008", "\u2009", "\u200A", "\u202F", "\u205F", "\u3000"};

/// The length of the well-formed character that `bytes` begin with; 0 if it is malformed.
std::size_t characterLength(std::string_view bytes) {
    const auto byte = [&](std::size_t index) {
        return index < bytes.size() ? static_cast<std::uint8_t>(bytes[index]) : std::uint8_t{0};
    };
    const auto continues = [&](std::size_t index, std::uint8_t low = 0x80, std::uint8_t high = 0xBF) {
        return byte(index) >= low && byte(index) <= high;
    };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        return continues(1) ? 2 : 0;
    }
    if (lead >= 0xE0 && lead <= 0xEF) { // neither overlong forms nor surrogates
        const std::uint8_t low = lead == 0xE0 ? 0xA0 : 0x80;
        const std::uint8_t high = lead == 0xED ? 0x9F : 0xBF;
        return continues(1, low, high) && continues(2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) { // neither overlong forms nor anything above U+10FFFF
        const std::uint8_t low = lead == 0xF0 ? 0x90 : 0x80;
        const std::uint8_t high = lead == 0xF4 ? 0x8F : 0xBF;
        return continues(1, low, high) && continues(2) && continues(3) ? 4 : 0;
    }
    return 0;
}

} // namespace

bool isUtf8(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        if (length == 0) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

std::vector<std::string_view> nonEmptyLines(std::string_view text) {
    std::vector<std::string_view> lines;
    std::size_t start = 0;
    const auto endLineAt = [&](std::size_t end) {
        if (end > start) {
            lines.push_back(text.substr(start, end - start));
        }
    };
    for (std::size_t position = 0; position < text.size();) {
        const std::string_view rest = text.substr(position);
        const auto found = std::find_if(lineEnds.begin(), lineEnds.end(),
                                        [&](std::string_view lineEnd) { return rest.starts_with(lineEnd); });
        if (found == lineEnds.end()) {
            ++position;
            continue;
        }
        endLineAt(position);
        position += found->size();
        start = position;
    }
    endLineAt(text.size());
    return lines;
}

std::string_view trimmingWhitespace(std::string_view text) {
    const auto trimOnce = [&] {
        return std::any_of(whitespace.begin(), whitespace.end(), [&](std::string_view space) {
            if (text.starts_with(space)) {
                text.remove_prefix(space.size());
                return true;
            }
            if (text.ends_with(space)) {
                text.remove_suffix(space.size());
                return true;
            }
            return false;
        });
    };
    while (trimOnce()) {
    }
    return text;
}

} // namespace platform
