#pragma once

// Where the program says what went wrong: on standard output and in the desktop's log.

#include "platform/Logger.hpp"

#include <string_view>

namespace marvelode {

class Log {
public:
    /// Prints `message` on a line of its own and adds it, to the letter, to the desktop's log at error level.
    static void error(std::string_view message);

    /// The program's place in the desktop's log, created on first use.
    static const platform::Logger& logger();
};

} // namespace marvelode
