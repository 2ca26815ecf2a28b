#include "tests/faults/User.hpp"

#include <glib-unix.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace faults {
namespace {

using namespace platform::linux;

constexpr auto somethingToRead = static_cast<GIOCondition>(G_IO_IN | G_IO_HUP);

void tell(int line, const Event& event) {
    const std::string message = encode(event);
    send(line, message.data(), message.size(), MSG_NOSIGNAL); // to a program that may have ended
}

} // namespace

User::User(const std::filesystem::path& path)
    : _door{socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)}
    , _doorSource{g_unix_fd_add(_door, G_IO_IN, knocked, this)} {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    constexpr int visitors = 16;
    EXPECT_EQ(bind(_door, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(_door, visitors), 0);
}

User::~User() {
    while (!_lines.empty()) {
        hangUp(_lines.begin()->first);
    }
    g_source_remove(_doorSource);
    close(_door);
}

gboolean User::knocked(gint door, GIOCondition, gpointer self) {
    const int line = accept4(door, nullptr, nullptr, SOCK_CLOEXEC);
    static_cast<User*>(self)->_lines[line] = g_unix_fd_add(line, somethingToRead, told, self);
    return G_SOURCE_CONTINUE;
}

gboolean User::told(gint line, GIOCondition, gpointer self) {
    static std::array<char, longestMessage> message;
    const ssize_t size = recv(line, message.data(), message.size(), MSG_DONTWAIT);
    if (size <= 0) {
        static_cast<User*>(self)->hangUp(line);
    } else {
        static_cast<User*>(self)->hear(line, {message.data(), static_cast<std::size_t>(size)});
    }
    return G_SOURCE_CONTINUE;
}

void User::hear(int line, std::string_view message) {
    const auto request = decodeRequest(message, [](const Event&) {});
    ASSERT_TRUE(request) << message;
    if (const auto* alert = std::get_if<AlertRequest>(&*request)) {
        ++reminders;
        _answered.insert(line);
        tell(line, {Event::Kind::Pressed, alert->window, nextButton, {}});
        nextButton = 1 - nextButton;
    } else if (const auto* panel = std::get_if<PanelRequest>(&*request); panel && panel->isModal) {
        ++panels;
        _answered.insert(line);
        tell(line, {Event::Kind::Closed, panel->window, 0, {}});
    }
}

void User::hangUp(int line) {
    g_source_remove(_lines.at(line));
    _lines.erase(line);
    _answered.erase(line);
    close(line);
}

} // namespace faults
