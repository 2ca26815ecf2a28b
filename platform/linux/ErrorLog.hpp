#pragma once

// Where the parts of the desktop report what went wrong. One object is handed on to all of them by reference and
// outlives them; implemented by StandardErrorLog and, for tests, by CollectedErrors.

#include <string_view>

namespace platform::linux {

class ErrorLog {
public:
    virtual ~ErrorLog() = default;

    /// Adds `problem`, one line without a line end. Called on the main thread.
    virtual void add(std::string_view problem) = 0;
};

/// Prints each problem on standard error, and writes it to the journal unless standard error leads there.
class StandardErrorLog final : public ErrorLog {
public:
    void add(std::string_view problem) override;
};

} // namespace platform::linux
