#include "platform/linux/Output.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>

namespace platform::linux {
namespace {

/// Opens a terminal or a pipe once more: whether the descriptor itself waits is shared with other programs.
int openedOnceMore(int descriptor) {
    const std::string path = "/proc/self/fd/" + std::to_string(descriptor);
    return open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
}

bool takesMore(int descriptor) {
    pollfd writable{descriptor, POLLOUT, 0};
    return poll(&writable, 1, 0) > 0;
}

void writeOnce(int descriptor, std::string_view text) {
    [[maybe_unused]] const ssize_t count = write(descriptor, text.data(), text.size());
}

} // namespace

void writeAtOnce(int descriptor, std::string_view text) {
    struct stat status{};
    fstat(descriptor, &status);
    const bool mayWait = S_ISCHR(status.st_mode) || S_ISFIFO(status.st_mode);
    const int own = mayWait ? openedOnceMore(descriptor) : -1;
    if (S_ISSOCK(status.st_mode)) {
        send(descriptor, text.data(), text.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    } else if (own >= 0) {
        writeOnce(own, text);
        close(own);
    } else if (!mayWait || takesMore(descriptor)) {
        writeOnce(descriptor, text);
    }
}

} // namespace platform::linux
