#pragma once

// What the program does with text beyond the language's own strings: validating UTF-8, splitting lines and
// trimming, in Unicode's terms. All texts are UTF-8.

#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Whether `bytes` are well-formed UTF-8.
bool isUtf8(std::string_view bytes);

/// The lines of `text`, which must be well-formed, without empty ones. Lines end at a line feed, a carriage return
/// or both, a vertical tab, a form feed, U+0085, U+2028 or U+2029.
std::vector<std::string_view> nonEmptyLines(std::string_view text);

/// `text` without tabs and Unicode spaces at its two ends.
std::string_view trimmingWhitespace(std::string_view text);

} // namespace platform
