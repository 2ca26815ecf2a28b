#include "platform/linux/EndingSignals.hpp"

#include "platform/Fatal.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <utility>

#include <sys/eventfd.h>
#include <unistd.h>

#include <glib-unix.h>

namespace platform::freedesktop {
namespace {

constexpr std::array signals{SIGTERM, SIGINT, SIGHUP};

volatile std::sig_atomic_t counter = -1; // an event counter: all that a signal handler may touch

void count(int) {
    const int interrupted = errno;
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(counter, &one, sizeof one);
    errno = interrupted;
}

void handle(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : signals) {
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

/// GLib's own signal sources would keep a thread for this.
EndingSignals::EndingSignals(std::function<void()> end)
    : _end{std::move(end)} {
    counter = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (counter < 0) {
        fatal();
    }
    const auto ready = [](int descriptor, GIOCondition, gpointer self) -> gboolean {
        std::uint64_t received = 0;
        if (read(descriptor, &received, sizeof received) == sizeof received) {
            static_cast<EndingSignals*>(self)->_end();
        }
        return G_SOURCE_CONTINUE;
    };
    _source = g_unix_fd_add(counter, G_IO_IN, ready, this);
    handle(count);
}

EndingSignals::~EndingSignals() {
    handle(SIG_DFL);
    g_source_remove(_source);
    close(std::exchange(counter, -1));
}

} // namespace platform::freedesktop
