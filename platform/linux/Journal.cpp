#include "platform/linux/Journal.hpp"

#include <endian.h>
#include <glib.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace platform::linux {
namespace {

/// One field as the journal reads it: a text of several lines comes with its length, in eight bytes.
std::string field(const std::string& name, std::string_view value) {
    if (value.find('\n') == std::string_view::npos) {
        return name + '=' + std::string{value} + '\n';
    }
    const std::uint64_t length = htole64(value.size());
    std::array<char, sizeof length> bytes{};
    std::memcpy(bytes.data(), &length, sizeof length);
    return name + '\n' + std::string{bytes.data(), bytes.size()} + std::string{value} + '\n';
}

void deliver(const std::string& entry, const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (socket >= 0) {
        sendto(socket, entry.data(), entry.size(), MSG_DONTWAIT | MSG_NOSIGNAL,
               reinterpret_cast<const sockaddr*>(&address), sizeof address);
        close(socket);
    }
}

} // namespace

bool isJournalRunning() { return g_file_test(journalSocket, G_FILE_TEST_EXISTS); }

void writeToJournal(const Logger& logger, Logger::Level level, std::string_view message, const char* socket) {
    constexpr std::string_view errorPriority = "3";
    switch (level) {
    case Logger::Level::Error:
        deliver(field("MESSAGE", message) + field("PRIORITY", errorPriority) +
                    field("SYSLOG_IDENTIFIER", "marvelode-timer") + field("SUBSYSTEM", logger.subsystem) +
                    field("CATEGORY", logger.category),
                socket);
        break;
    }
}

} // namespace platform::linux
