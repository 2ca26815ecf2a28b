#pragma once

// What the program prints. Nobody keeps it waiting by that: a terminal that its user has stopped loses the text.

#include <string_view>

namespace platform::linux {

/// Writes `text` to `descriptor` and drops what cannot be written at once.
void writeAtOnce(int descriptor, std::string_view text);

} // namespace platform::linux
