// The program that shows windows for the resident program, which starts it, tells it through its standard input
// what to show, and is told there what the user does. It ends with the last window, or with the resident program.

#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/helper/Pictures.hpp"
#include "platform/linux/window/helper/TopLevel.hpp"
#include "platform/linux/window/helper/Windows.hpp"

#include <glib-unix.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <optional>
#include <string>

namespace {

using namespace platform::linux;

constexpr int residentProgram = STDIN_FILENO;

bool wasStartedByResidentProgram() {
    int type = 0;
    socklen_t size = sizeof type;
    return getsockopt(residentProgram, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

void tell(const Event& event) {
    const std::string message = encode(event);
    send(residentProgram, message.data(), message.size(),
         MSG_NOSIGNAL); // its end is noticed where requests are read
}

/// Reads one request and does it. Gives whether there may be more.
gboolean serve(gint, GIOCondition, gpointer windows) {
    std::array<char, longestMessage> packet; // NOLINT(*-member-init): written before it is read
    const ssize_t size = recv(residentProgram, packet.data(), packet.size(), 0);
    auto request = size > 0 ? decodeRequest({packet.data(), static_cast<std::size_t>(size)}, tell) : std::nullopt;
    if (!request) {
        gtk_main_quit();
        return G_SOURCE_REMOVE;
    }
    static_cast<Windows*>(windows)->handle(*std::move(request));
    return G_SOURCE_CONTINUE;
}

} // namespace

int main(int argc, char** argv) {
    if (!wasStartedByResidentProgram()) {
        g_printerr("%s shows the windows of Marvelode Timer, which starts it when one is needed.\n"
                   "To use the timer, start marvelode-timer.\n",
                   argv[0]);
        return EXIT_FAILURE;
    }
    g_unsetenv("GTK_MODULES");              // nothing here needs one, and each delays the window
    g_setenv("GIO_USE_VFS", "local", TRUE); // all files are local, so there is no need to ask a daemon
    g_set_prgname(applicationId);
    g_set_application_name("Marvelode Timer");
    if (!gtk_init_check(&argc, &argv)) {
        tell({Event::Kind::NoDisplay, 0, 0, {}});
        return EXIT_FAILURE;
    }
    for (const char* token : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
        g_unsetenv(token); // GTK has read it, and a browser that is started from here has no right to it
    }
    setUpAppearance();
    Windows windows{tell};
    g_unix_fd_add(residentProgram, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), serve, &windows);
    gtk_main();
    return EXIT_SUCCESS;
}
