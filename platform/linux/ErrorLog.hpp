#pragma once

// Where the parts of the desktop report what went wrong. One object is handed on to all of them by reference and
// outlives them; implemented by StandardErrorLog and, for tests, by CollectedErrors.

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

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
    static constexpr std::size_t kept = 5;

    void add(std::string_view problem) override;

    /// The last problems, the oldest first, each with how long ago it was.
    std::vector<std::string> latest() const;

private:
    struct Problem {
        std::chrono::seconds time; ///< By the monotonic clock.
        std::string text;
    };
    std::vector<Problem> _latest;
};

} // namespace platform::linux
