#include "platform/linux/HelperProcess.hpp"

#include <glib.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace platform::linux {
namespace {

/// Whether nobody has reaped that child yet. Once somebody has, such as GLib, which tells of it only later, its
/// number may be another program's.
bool isUnreaped(pid_t child) {
    siginfo_t ignored{};
    return waitid(P_PID, static_cast<id_t>(child), &ignored, WEXITED | WNOHANG | WNOWAIT) == 0;
}

/// Reaps a process that was killed. That takes a millisecond, but longer if the system is writing its memory to a
/// disk that does not answer.
bool reap(pid_t process) {
    constexpr gint64 patience = G_USEC_PER_SEC / 10;
    const gint64 deadline = g_get_monotonic_time() + patience;
    while (waitpid(process, nullptr, WNOHANG) == 0) {
        if (g_get_monotonic_time() > deadline) {
            return false;
        }
        poll(nullptr, 0, 1); // sleeps for a millisecond, or until a signal comes
    }
    return true;
}

} // namespace

HelperProcess::HelperProcess(pid_t process, std::function<void(int status)> ended)
    : _process{process}
    , _ended{std::move(ended)} {
    const auto onEnd = [](GPid, int status, gpointer data) {
        auto& self = *static_cast<HelperProcess*>(data);
        self._watch = 0;
        const auto tell = std::move(self._ended);
        tell(status);
    };
    _watch = g_child_watch_add(_process, onEnd, this);
}

HelperProcess::~HelperProcess() {
    if (_watch == 0) {
        return;
    }
    g_source_remove(_watch);
    kill();
    if (!reap(_process)) {
        g_child_watch_add(_process, [](GPid, int, gpointer) {}, nullptr);
    }
}

void HelperProcess::kill() const {
    if (_watch != 0 && isUnreaped(_process)) {
        ::kill(getpgid(_process) == _process ? -_process : _process, SIGKILL);
    }
}

} // namespace platform::linux
