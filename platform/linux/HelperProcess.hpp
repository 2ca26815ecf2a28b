#pragma once

// A helper program that was started. Neither its end nor this object's own keeps this program waiting.

#include <sys/types.h>

#include <functional>

namespace platform::linux {

class HelperProcess {
public:
    /// Takes over `process`, a child of this one. `ended` is called from the main loop, once, with the status that
    /// `waitpid` returns; this object may be destroyed meanwhile.
    HelperProcess(pid_t process, std::function<void(int status)> ended);

    /// Kills the process, and its group if it leads one, if it is still there. One that does not die at once is
    /// reaped by the main loop later.
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    /// Kills the process, and its group if it leads one, of which `ended` is told as of any other end.
    void kill() const;

private:
    const pid_t _process;
    std::function<void(int)> _ended;
    unsigned _watch; ///< A source until the process has ended.
};

} // namespace platform::linux
