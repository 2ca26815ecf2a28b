#include "platform/linux/window/WindowProcess.hpp"

#include "platform/linux/glib/Handles.hpp"

#include <glib-unix.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <memory>
#include <system_error>
#include <utility>

namespace platform::linux {
namespace {

using namespace std::string_literals;

/// How long a program that was told to end may take.
constexpr timeval patience{0, 500'000};

std::string messageOf(int error) { return std::generic_category().message(error); }

/// How long the first window may take. It takes a tenth of a second, and a few on a machine that is busy to the
/// utmost; and half a snooze is not too long to wait for a reminder that comes again.
constexpr unsigned secondsToShow = 30;

/// This program's environment with another activation token: its own was used up when it started.
TextsHandle environmentWith(const std::string& activationToken) {
    gchar** environment = g_get_environ();
    for (const char* variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) { // GTK 3 reads the older one
        environment = activationToken.empty()
                          ? g_environ_unsetenv(environment, variable)
                          : g_environ_setenv(environment, variable, activationToken.c_str(), TRUE);
    }
    return TextsHandle{environment};
}

} // namespace

WindowProcess::WindowProcess(const std::filesystem::path& path, ErrorLog& errorLog,
                             std::function<void()> somethingHappened, const std::string& activationToken)
    : _errorLog{errorLog}
    , _somethingHappened{std::move(somethingHappened)} {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        _errorLog.add("no window can be shown: " + messageOf(errno));
        return;
    }
    _socket = ends[0];
    start(path, activationToken, ends[1]);
    close(ends[1]);
}

void WindowProcess::start(const std::filesystem::path& path, const std::string& activationToken, int childSocket) {
    std::string program = path.string();
    std::array<gchar*, 2> arguments{program.data(), nullptr};
    const TextsHandle environment = environmentWith(activationToken);
    constexpr int inherited = -1;
    ErrorSlot error;
    const auto flags = static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_LEAVE_DESCRIPTORS_OPEN);
    if (!g_spawn_async_with_fds(nullptr, arguments.data(), environment.get(), flags, nullptr, nullptr, &_process,
                                childSocket, inherited, inherited, error.out())) {
        _errorLog.add("no window can be shown: "s + error.message());
        close(std::exchange(_socket, -1));
        return;
    }
    const auto onReadable = [](gint, GIOCondition, gpointer self) -> gboolean {
        static_cast<WindowProcess*>(self)->receive();
        return G_SOURCE_CONTINUE; // `end()` removes the source
    };
    _source = g_unix_fd_add(_socket, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), onReadable, this);
    const auto onDeadline = [](gpointer self) -> gboolean {
        static_cast<WindowProcess*>(self)->giveUp("the window program has shown no window for half a minute");
        static_cast<WindowProcess*>(self)->_somethingHappened();
        return G_SOURCE_CONTINUE; // `end()` has removed the source
    };
    _deadline = g_timeout_add_seconds(secondsToShow, onDeadline, this);
}

WindowProcess::~WindowProcess() {
    if (!isAlive()) {
        return;
    }
    shutdown(_socket, SHUT_WR);
    setsockopt(_socket, SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
    std::array<char, longestMessage> ignored; // NOLINT(*-member-init): written before it would be read
    while (recv(_socket, ignored.data(), ignored.size(), 0) > 0) {
    }
    end();
}

void WindowProcess::stopWaiting() {
    if (_deadline != 0) {
        g_source_remove(std::exchange(_deadline, 0));
    }
}

void WindowProcess::end() {
    stopWaiting();
    g_source_remove(std::exchange(_source, 0));
    close(std::exchange(_socket, -1));
    kill(_process, SIGKILL); // of no effect on a program that has ended
    while (waitpid(_process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::optional<Event> WindowProcess::nextEvent() {
    if (_events.empty()) {
        return std::nullopt;
    }
    const Event event = _events.front();
    _events.pop_front();
    return event;
}

void WindowProcess::send(const Request& request) {
    if (!isAlive()) {
        return;
    }
    const std::string message = encode(request);
    const bool fits = message.size() <= longestMessage;
    if (!fits || ::send(_socket, message.data(), message.size(), MSG_DONTWAIT | MSG_NOSIGNAL) < 0) {
        giveUp("the window program cannot be told what to show: " + messageOf(fits ? errno : EMSGSIZE));
    }
}

void WindowProcess::giveUp(std::string_view reason) {
    if (isAlive()) {
        _errorLog.add(reason);
        end();
    }
}

void WindowProcess::receive() {
    std::array<char, longestMessage> packet; // NOLINT(*-member-init): as above
    const ssize_t size = recv(_socket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_TRUNC);
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
        return;
    }
    if (size <= 0) {
        giveUp("the window program ended before its window was closed");
        _somethingHappened();
        return;
    }
    const auto length = static_cast<std::size_t>(size);
    const auto event = length <= packet.size() ? decodeEvent({packet.data(), length}) : std::nullopt;
    if (event && event->kind == Event::Kind::Shown) {
        stopWaiting();
        return;
    }
    if (event) {
        _events.push_back(*event);
    } else {
        giveUp("the window program sent a message that makes no sense");
    }
    _somethingHappened();
}

} // namespace platform::linux
