#include "tests/linux/ScriptedUser.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <string>
#include <utility>

namespace contract {

using namespace platform::linux;

ScriptedUser::ScriptedUser(const std::filesystem::path& path, std::function<void()> windowOpened)
    : _windowOpened{std::move(windowOpened)}
    , _door{socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0)} {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
    constexpr int visitors = 4;
    EXPECT_EQ(bind(_door, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(listen(_door, visitors), 0);
    _doorSource = watch(_door, [](gint, GIOCondition, gpointer self) -> gboolean {
        static_cast<ScriptedUser*>(self)->letIn();
        return G_SOURCE_CONTINUE;
    });
    g_setenv("MARVELODE_SCRIPTED_USER", path.c_str(), TRUE);
}

ScriptedUser::~ScriptedUser() {
    hangUp();
    g_source_remove(_doorSource);
    close(_door);
}

template <typename Kind>
const Kind* ScriptedUser::topmost() const {
    const Kind* kind = _windows.empty() ? nullptr : std::get_if<Kind>(&_windows.back());
    EXPECT_TRUE(kind) << "no such window in front";
    return kind;
}

void ScriptedUser::pressAlertButton(std::size_t index) {
    if (const auto* alert = topmost<AlertRequest>()) {
        tell({Event::Kind::Pressed, alert->window, static_cast<std::uint32_t>(index), {}});
        _windows.pop_back(); // nothing more can be done with it
    }
}

void ScriptedUser::tickAlertCheckBox() {
    if (const auto* alert = topmost<AlertRequest>()) {
        const auto checkBox = static_cast<std::uint32_t>(alert->alert.buttons().size());
        tell({Event::Kind::Changed, alert->window, checkBox, ControlValue{true}});
    }
}

void ScriptedUser::pressPanelButton(std::string_view label) {
    if (const auto* panel = topmost<PanelRequest>()) {
        const auto controls = controlsIn(panel->content);
        const auto found = std::find_if(controls.begin(), controls.end(), [&](const platform::Node* node) {
            const auto* button = std::get_if<platform::node::Button>(node);
            return button && button->label == label;
        });
        ASSERT_NE(found, controls.end()) << "no button " << label;
        tell({Event::Kind::Pressed, panel->window, static_cast<std::uint32_t>(found - controls.begin()), {}});
    }
}

void ScriptedUser::closePanel() {
    if (const auto* panel = topmost<PanelRequest>()) {
        tell({Event::Kind::Closed, panel->window, 0, {}});
    }
}

unsigned ScriptedUser::watch(int descriptor, GUnixFDSourceFunc ready) {
    return g_unix_fd_add(descriptor, static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), ready, this);
}

void ScriptedUser::letIn() {
    hangUp();
    _line = accept4(_door, nullptr, nullptr, SOCK_CLOEXEC);
    _lineSource = watch(_line, [](gint, GIOCondition, gpointer self) -> gboolean {
        static_cast<ScriptedUser*>(self)->listenToProgram();
        return G_SOURCE_CONTINUE;
    });
}

void ScriptedUser::listenToProgram() {
    static std::array<char, longestMessage> message;
    const ssize_t size = recv(_line, message.data(), message.size(), MSG_DONTWAIT);
    if (size <= 0) {
        hangUp();
        return;
    }
    const auto request = decodeRequest({message.data(), static_cast<std::size_t>(size)}, [](const Event&) {});
    ASSERT_TRUE(request);
    if (const auto* alert = std::get_if<AlertRequest>(&*request)) {
        open(*alert);
    } else if (const auto* panel = std::get_if<PanelRequest>(&*request)) {
        open(*panel);
    } else if (const auto* closing = std::get_if<CloseRequest>(&*request)) {
        std::erase_if(_windows, [&](const Window& window) {
            return std::visit([&](const auto& each) { return each.window == closing->window; }, window);
        });
    }
}

void ScriptedUser::open(Window window) {
    _windows.push_back(std::move(window));
    _windowOpened();
}

void ScriptedUser::hangUp() {
    if (_line >= 0) {
        g_source_remove(_lineSource);
        close(std::exchange(_line, -1));
        _windows.clear();
    }
}

void ScriptedUser::tell(const Event& event) const {
    const std::string message = encode(event);
    EXPECT_EQ(send(_line, message.data(), message.size(), MSG_NOSIGNAL), static_cast<ssize_t>(message.size()));
}

} // namespace contract
