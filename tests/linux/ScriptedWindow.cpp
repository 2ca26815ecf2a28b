// Stands in for the program that shows windows, so that no display is needed: hands every request on to the test
// that plays the user, and every event of that user back.

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t longestMessage = 64 * 1024;

/// Hands one message on; false if there will be no more of them.
bool relay(int from, int to) {
    static std::array<char, longestMessage> message;
    const ssize_t size = recv(from, message.data(), message.size(), 0);
    return size > 0 && send(to, message.data(), static_cast<std::size_t>(size), MSG_NOSIGNAL) == size;
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
        if ((ends[0].revents != 0 && !relay(STDIN_FILENO, test)) ||
            (ends[1].revents != 0 && !relay(test, STDIN_FILENO))) {
            return EXIT_SUCCESS;
        }
    }
}
