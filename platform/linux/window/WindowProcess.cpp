#include "platform/linux/window/WindowProcess.hpp"

#include <glib-unix.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

/// How long a program that was told to end may take, in microseconds.
constexpr gint64 patience = G_USEC_PER_SEC / 2;

/// How long the first window may take. It takes a tenth of a second, and a few on a machine that is busy to the
/// utmost; and half a snooze is not too long to wait for a reminder that comes again.
constexpr std::chrono::seconds timeToShow{30};

/// The most packets that are left in a socket that a program has died at.
constexpr int mostLastWords = 100;

/// What no user can do in a second.
constexpr int mostEventsInSecond = 1000;

constexpr const char* endedEarly = "the window program ended before its window was closed";

using Packet = std::array<char, longestEvent>;

std::string messageOf(int error) { return std::generic_category().message(error); }

/// The names that newer and older toolkits read.
std::vector<std::string> variablesFor(const std::string& activationToken) {
    if (activationToken.empty()) {
        return {};
    }
    return {"XDG_ACTIVATION_TOKEN=" + activationToken, "DESKTOP_STARTUP_ID=" + activationToken};
}

/// Throws away what comes from the socket, until the other side closes it or time is up.
void drain(int socket) {
    const gint64 deadline = g_get_monotonic_time() + patience;
    Packet ignored{};
    for (gint64 left = patience; left > 0; left = deadline - g_get_monotonic_time()) {
        pollfd readable{socket, POLLIN, 0};
        if (poll(&readable, 1, static_cast<int>(left / 1000) + 1) > 0 &&
            recv(socket, ignored.data(), ignored.size(), MSG_DONTWAIT) <= 0) {
            return;
        }
    }
}

} // namespace

WindowProcess::WindowProcess(const HelperProgram& program, ErrorLog& errorLog,
                             std::function<void()> somethingHappened, const std::string& activationToken)
    : _errorLog{errorLog}
    , _somethingHappened{std::move(somethingHappened)}
    , _session{program.session()}
    , _display{_session.display()} {
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0) {
        _errorLog.add("no window can be shown: " + messageOf(errno));
        return;
    }
    _socket = ends[0];
    start(program, activationToken, ends[1]);
    close(ends[1]);
}

void WindowProcess::start(const HelperProgram& program, const std::string& activationToken, int childSocket) {
    const HelperProgram::Started started =
        program.start({.variables = variablesFor(activationToken), .input = childSocket});
    if (started.process == 0) {
        _errorLog.add("no window can be shown: " + started.problem);
        close(std::exchange(_socket, -1));
        return;
    }
    _process.emplace(started.process, [this](int) { receiveLast(); });
    const auto onReadable = [](gint, GIOCondition, gpointer self) -> gboolean {
        static_cast<WindowProcess*>(self)->receive();
        return G_SOURCE_CONTINUE; // `end()` removes the source
    };
    _source = g_unix_fd_add(_socket, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP | G_IO_ERR), onReadable, this);
    _deadline.start(timeToShow, [this] {
        missDisplay("the window program has shown no window for half a minute");
        _somethingHappened();
    });
}

WindowProcess::~WindowProcess() {
    if (isAlive()) {
        shutdown(_socket, SHUT_WR);
        drain(_socket);
        end();
    }
}

void WindowProcess::end() {
    _deadline.cancel();
    g_source_remove(std::exchange(_source, 0));
    close(std::exchange(_socket, -1));
    _process.reset();
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
    const bool isSent = fits && ::send(_socket, message.data(), message.size(), MSG_DONTWAIT | MSG_NOSIGNAL) >= 0;
    const bool hasEnded = fits && !isSent && (errno == EPIPE || errno == ECONNRESET);
    if (!isSent && !hasEnded) { // what it said before its end is still to be read
        giveUp("the window program cannot be told what to show: " + messageOf(fits ? errno : EMSGSIZE));
    }
}

void WindowProcess::giveUp(std::string_view reason) {
    if (isAlive()) {
        _errorLog.add(reason);
        end();
    }
}

/// Receives one packet. Returns whether there was one.
bool WindowProcess::receive() {
    Packet packet{};
    const auto receiveOne = [&] { return recv(_socket, packet.data(), packet.size(), MSG_DONTWAIT | MSG_TRUNC); };
    ssize_t size = receiveOne();
    if (size < 0 && errno == ECONNRESET) { // it ended without reading everything; what it had said comes after that
        size = receiveOne();
    }
    if (size < 0 && (errno == EAGAIN || errno == EINTR)) {
        return false;
    }
    const auto length = static_cast<std::size_t>(std::max(size, ssize_t{0}));
    const auto event = length <= packet.size() ? decodeEvent({packet.data(), length}) : std::nullopt;
    if (length == 0) {
        giveUp(endedEarly);
    } else if (!event) {
        giveUp("the window program sent a message that makes no sense");
    } else if (isFlood()) {
        giveUp("the window program sent more than a user can do");
    } else {
        take(*event);
    }
    _somethingHappened();
    return true;
}

void WindowProcess::take(const Event& event) {
    if (event.kind == Event::Kind::Shown) {
        _deadline.cancel();
        _hasShownWindow = true;
        _session.displayWasFound(_display);
    } else if (event.kind == Event::Kind::NoDisplay) {
        missDisplay("the window program has found no display");
    } else {
        _events.push_back(event);
    }
}

void WindowProcess::missDisplay(std::string_view reason) {
    _hasFoundNoDisplay = true;
    _session.displayWasMissing(_display);
    giveUp(reason);
}

/// The program has ended. Its socket does not tell if a program that it started has it, too.
void WindowProcess::receiveLast() {
    for (int count = 0; count < mostLastWords && isAlive() && receive(); ++count) {
    }
    if (isAlive()) {
        giveUp(endedEarly);
        _somethingHappened();
    }
}

bool WindowProcess::isFlood() {
    const gint64 second = g_get_monotonic_time() / G_USEC_PER_SEC;
    if (std::exchange(_second, second) != second) {
        _eventsInSecond = 0;
    }
    return ++_eventsInSecond > mostEventsInSecond;
}

} // namespace platform::linux
