// Stands in for the program that shows windows, so that no display is needed: hands every request on to the test
// that plays the user, and every event of that user back. It says that a window is shown as soon as that is asked
// for.

#include "platform/linux/window/Protocol.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <variant>

namespace {

using namespace platform::linux;

bool hand(std::string_view message, int to) {
    return send(to, message.data(), message.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(message.size());
}

/// Hands one message on and tells `handed`; false if there will be no more of them.
bool relay(int from, int to, void (*handed)(std::string_view)) {
    static std::array<char, longestMessage> message;
    const ssize_t size = recv(from, message.data(), message.size(), 0);
    const std::string_view received{message.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
    if (received.empty() || !hand(received, to)) {
        return false;
    }
    handed(received);
    return true;
}

void sayThatItIsShown(std::string_view message) {
    const auto request = decodeRequest(message, [](const Event&) {});
    const auto* alert = request ? std::get_if<AlertRequest>(&*request) : nullptr;
    const auto* panel = request ? std::get_if<PanelRequest>(&*request) : nullptr;
    if (alert || panel) {
        hand(encode(Event{Event::Kind::Shown, alert ? alert->window : panel->window, 0, {}}), STDIN_FILENO);
    }
}

} // namespace

int main() {
    const char* const user = std::getenv("MARVELODE_SCRIPTED_USER");
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (!user || std::string_view{user}.size() >= sizeof address.sun_path) {
        return EXIT_FAILURE;
    }
    std::strcpy(address.sun_path, user);
    const int test = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (connect(test, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return EXIT_FAILURE;
    }
    std::array<pollfd, 2> ends{{{STDIN_FILENO, POLLIN, 0}, {test, POLLIN, 0}}};
    for (;;) {
        poll(ends.data(), ends.size(), -1);
        if ((ends[0].revents != 0 && !relay(STDIN_FILENO, test, sayThatItIsShown)) ||
            (ends[1].revents != 0 && !relay(test, STDIN_FILENO, [](std::string_view) {}))) {
            return EXIT_SUCCESS;
        }
    }
}
