#include "platform/linux/holding/helper/FullScreen.hpp"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace {

struct Free {
    // NOLINTNEXTLINE(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): how the library allocates
    void operator()(void* memory) const { std::free(memory); }
};

template <typename Reply>
using ReplyHandle = std::unique_ptr<Reply, Free>;

/// The display of the session.
class Display {
public:
    Display()
        : _connection{xcb_connect(nullptr, &_screen)} {}
    ~Display() { xcb_disconnect(_connection); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    bool isThere() const { return xcb_connection_has_error(_connection) == 0; }

    xcb_window_t root() const {
        xcb_screen_iterator_t screens = xcb_setup_roots_iterator(xcb_get_setup(_connection));
        for (int number = 0; number < _screen && screens.rem > 1; ++number) {
            xcb_screen_next(&screens);
        }
        return screens.data->root;
    }

    xcb_atom_t atom(std::string_view name) const {
        const auto length = static_cast<std::uint16_t>(name.size());
        const ReplyHandle<xcb_intern_atom_reply_t> reply{
            xcb_intern_atom_reply(_connection, xcb_intern_atom(_connection, 1, length, name.data()), nullptr)};
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    /// The numbers in a property; none if the window has gone or has no such property.
    std::vector<std::uint32_t> numbers(xcb_window_t window, std::string_view property, xcb_atom_t type) const {
        constexpr std::uint32_t most = 64;
        const ReplyHandle<xcb_get_property_reply_t> reply{xcb_get_property_reply(
            _connection, xcb_get_property(_connection, 0, window, atom(property), type, 0, most), nullptr)};
        if (!reply || reply->format != 32) {
            return {};
        }
        const std::span values{static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())),
                               reply->value_len};
        return {values.begin(), values.end()};
    }

private:
    int _screen = 0;
    xcb_connection_t* _connection; // never null, even if there is no display
};

bool isWayland() {
    const char* const display = std::getenv("WAYLAND_DISPLAY");
    return display && *display != '\0';
}

} // namespace

std::optional<bool> isFullScreen() {
    const Display display;
    if (isWayland() || !display.isThere()) {
        return std::nullopt;
    }
    const auto active = display.numbers(display.root(), "_NET_ACTIVE_WINDOW", XCB_ATOM_WINDOW);
    if (active.empty()) {
        return false;
    }
    const auto states = display.numbers(active.front(), "_NET_WM_STATE", XCB_ATOM_ATOM);
    return std::find(states.begin(), states.end(), display.atom("_NET_WM_STATE_FULLSCREEN")) != states.end();
}
