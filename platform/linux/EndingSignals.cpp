#include "platform/linux/EndingSignals.hpp"

#include <glib-unix.h>

#include <csignal>
#include <utility>

namespace platform::linux {
namespace {

constexpr std::array endingSignals{SIGTERM, SIGINT, SIGHUP};

/// Whether this program was started to ignore that signal, as `nohup` does with SIGHUP.
bool isIgnored(int signal) {
    struct sigaction action{};
    return signal == SIGHUP && sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

} // namespace

EndingSignals::EndingSignals(std::function<void()> end)
    : _end{std::move(end)} {
    const auto tell = [](gpointer self) -> gboolean {
        static_cast<EndingSignals*>(self)->_end();
        return G_SOURCE_CONTINUE;
    };
    for (std::size_t index = 0; index < endingSignals.size(); ++index) {
        _sources[index] = isIgnored(endingSignals[index]) ? 0 : g_unix_signal_add(endingSignals[index], tell, this);
    }
}

EndingSignals::~EndingSignals() {
    for (const unsigned source : _sources) {
        if (source != 0) {
            g_source_remove(source);
        }
    }
}

} // namespace platform::linux
