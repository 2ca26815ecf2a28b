#pragma once

// What the fuzz targets share. A target states what must hold for every input; those that are kept in `seeds` are
// tried, and in the preset `asan` libFuzzer looks for one for which it does not hold.

#include <string_view>

namespace fuzz {

/// Tries one input. Each target defines it.
void check(std::string_view input);

/// Ends the process with the name of the `property` that was broken, unless it `holds`.
void require(bool holds, const char* property);

/// Cuts `text` at the first `separator`, which belongs to neither part; the second is empty if there is none.
struct Parts {
    std::string_view first;
    std::string_view second;
};
Parts cut(std::string_view text, std::string_view separator);

} // namespace fuzz
