#pragma once

// The desktop's log and the program's standard output.

#include <string>
#include <string_view>

namespace platform {

/// Writes entries of one subsystem and category to the desktop's log.
class Logger {
public:
    enum class Level { Error };

    Logger(std::string subsystem, std::string category)
        : subsystem{std::move(subsystem)}
        , category{std::move(category)} {}

    const std::string subsystem;
    const std::string category;

    /// Whether the desktop keeps entries of that level.
    bool isEnabled(Level level) const;

    /// Adds one entry whose text is exactly `message`, with nothing redacted.
    void log(Level level, std::string_view message) const;
};

/// Writes `line` and a line feed to standard output.
void print(std::string_view line);

} // namespace platform
