// Any bytes: what counts as text, and what its lines and trimmed lines are.

#include "platform/Text.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <glib.h>

#include <string>
#include <string_view>
#include <vector>

namespace {

/// GLib's opinion, asked for the pieces between zero bytes, which GLib takes for the ends of texts.
bool isUtf8ForGlib(std::string_view bytes) {
    while (!bytes.empty()) {
        const fuzz::Parts parts = fuzz::cut(bytes, std::string_view{"\0", 1});
        if (!g_utf8_validate(parts.first.data(), static_cast<gssize>(parts.first.size()), nullptr)) {
            return false;
        }
        bytes = parts.second;
    }
    return true;
}

bool isLineEnd(gunichar character) {
    return (character >= '\n' && character <= '\r') || character == 0x85 || character == 0x2028 ||
           character == 0x2029;
}

/// The lines as a reader of one character at a time sees them.
std::vector<std::string> linesByCharacter(std::string_view text) {
    std::vector<std::string> lines(1);
    const char* const end = text.data() + text.size();
    for (const char* place = text.data(); place != end; place = g_utf8_next_char(place)) {
        if (isLineEnd(g_utf8_get_char(place))) {
            lines.emplace_back();
        } else {
            lines.back().append(place, static_cast<std::size_t>(g_utf8_next_char(place) - place));
        }
    }
    std::erase(lines, "");
    return lines;
}

bool isSpace(gunichar character) {
    return character == '\t' || g_unichar_type(character) == G_UNICODE_SPACE_SEPARATOR;
}

void checkTrimmed(const std::string& line) {
    const std::string_view trimmed = platform::trimmingWhitespace(line);
    fuzz::require(line.find(trimmed) != std::string::npos, "a trimmed line is part of the line");
    if (trimmed.empty()) {
        return;
    }
    const char* const end = trimmed.data() + trimmed.size();
    fuzz::require(!isSpace(g_utf8_get_char(trimmed.data())), "no space is left at the beginning");
    fuzz::require(!isSpace(g_utf8_get_char(g_utf8_prev_char(end))), "no space is left at the end");
}

} // namespace

void fuzz::check(std::string_view input) {
    const bool isText = platform::isUtf8(input);
    require(isText == isUtf8ForGlib(input), "GLib agrees on what is text");
    if (!isText) {
        return;
    }
    const std::vector<std::string_view> lines = platform::nonEmptyLines(input);
    require(std::vector<std::string>(lines.begin(), lines.end()) == linesByCharacter(input),
            "the lines are those between line ends");
    for (const std::string_view line : lines) {
        checkTrimmed(std::string{line});
    }
}
