#pragma once

// What a story is told when it wants something that the desktop does not show.

#include <stdexcept>
#include <string>
#include <string_view>

namespace platform::simulated {

/// The story wanted something that is not there.
class Unexpected : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

std::string inQuotes(std::string_view text);

/// Throws `Unexpected` for a thing of that kind and name.
[[noreturn]] void missing(std::string_view kind, std::string_view name);

} // namespace platform::simulated
