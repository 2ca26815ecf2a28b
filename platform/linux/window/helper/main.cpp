// The program that shows windows for the resident program, which starts it, tells it through its standard input
// what to show, and is told there what the user does. It ends with the last window, or with the resident program.

#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/helper/Accessibility.hpp"
#include "platform/linux/window/helper/Appearance.hpp"
#include "platform/linux/window/helper/Backend.hpp"
#include "platform/linux/window/helper/Fonts.hpp"
#include "platform/linux/window/helper/Pictures.hpp"
#include "platform/linux/window/helper/VariableForNow.hpp"
#include "platform/linux/window/helper/Windows.hpp"

#include <glib-unix.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <clocale>
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

bool setUpToolkit(int& argc, char**& argv) {
    const VariableForNow noModules{"GTK_MODULES", nullptr};  // none is needed here, and each delays the window
    const VariableForNow localFiles{"GIO_USE_VFS", "local"}; // all files are, so there is no need to ask a daemon
    const VariableForNow noBridge{"NO_AT_BRIDGE", "1"};      // until meetAssistiveTechnology()
    setlocale(LC_ALL, "");
    gtk_disable_setlocale(); // it would be while fonts are read
    const FontReading fonts;
    g_vfs_get_default(); // reads GIO_USE_VFS
    return gtk_init_check(&argc, &argv) != FALSE;
}

/// Waits for a request; nothing if there will be none that can be read.
std::optional<Request> readRequest(int flags = 0) {
    static std::array<char, longestMessage> packet; // too large for the stack; read before the next one comes
    const ssize_t size = recv(residentProgram, packet.data(), packet.size(), flags);
    return size > 0 ? decodeRequest({packet.data(), static_cast<std::size_t>(size)}, tell) : std::nullopt;
}

void chooseBackend() {
    if (!isX11Better()) {
        return;
    }
    if (const auto first = readRequest(MSG_PEEK)) {
        preferX11For(*first);
    }
}

/// Reads one request and does it. Returns whether there may be more.
gboolean serve(gint, GIOCondition, gpointer windows) {
    auto request = readRequest();
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
    prctl(PR_SET_NAME, "marvelode-timer-window"); // the system would call it by the number of its open file
    g_set_prgname(applicationId);
    g_set_application_name("Marvelode Timer");
    chooseBackend();
    if (!setUpToolkit(argc, argv)) {
        tell({Event::Kind::NoDisplay, 0, 0, {}});
        return EXIT_FAILURE;
    }
    for (const char* token : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
        g_unsetenv(token); // GTK has read it, and a browser that is started from here has no right to it
    }
    meetAssistiveTechnology();
    pango_cairo_font_map_get_default(); // reads the fonts in a thread of its own, if that was not done before
    setUpAppearance();
    Windows windows{tell};
    g_unix_fd_add(residentProgram, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), serve, &windows);
    gtk_main();
    return EXIT_SUCCESS;
}
