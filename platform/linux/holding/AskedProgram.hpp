#pragma once

// A program that is started to answer a question by its exit status. One that is not done in time is killed, and
// one that was killed is waited for: there is never more than one.

#include "platform/linux/HelperProcess.hpp"
#include "platform/linux/glib/DelayedCall.hpp"

#include <chrono>
#include <functional>
#include <optional>

namespace platform::linux {

class AskedProgram {
public:
    /// Gets the exit status; nothing if a signal ended the program, or it was not done in time.
    using Answered = std::function<void(std::optional<int> status)>;

    AskedProgram() = default;
    ~AskedProgram() { giveUp(); }
    AskedProgram(const AskedProgram&) = delete;
    AskedProgram& operator=(const AskedProgram&) = delete;

    /// Whether one that was started has not ended yet.
    bool isRunning() const { return _process.has_value(); }

    /// Takes over `process`, a child of this one, which is killed with its group if it leads one. None may be
    /// running. `answered` is called once, after `patience` at the latest, and may call `giveUp`.
    void await(pid_t process, std::chrono::milliseconds patience, Answered answered);

    /// Kills the program; there will be no answer.
    void giveUp();

private:
    void ended(int status);

    std::optional<HelperProcess> _process;
    DelayedCall _deadline;
    Answered _answered;
};

} // namespace platform::linux
