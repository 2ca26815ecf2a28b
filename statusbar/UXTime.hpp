#pragma once

// The short text beside the icon: hours or minutes, and seconds without a unit when little is left or gone. Both
// operations depend on nothing but their argument.

#include "platform/Date.hpp"

#include <string>

namespace marvelode {

class UXTime {
public:
    /// The text for `seconds` left. Empty at exactly 10 seconds. Stops the program if `seconds` is no number
    /// or does not fit a 64-bit integer.
    static std::string countdown(platform::TimeInterval seconds);

    /// The text for `seconds` gone by: "+" and nothing more at exactly 60. Stops the program as `countdown`
    /// does.
    static std::string countup(platform::TimeInterval seconds);
};

} // namespace marvelode
