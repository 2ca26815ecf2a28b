#pragma once

// The user in front of the windows of the Linux desktop. It knows which windows are open, and does what a test says
// with the topmost.

#include "platform/linux/window/Protocol.hpp"

#include <glib-unix.h>

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string_view>
#include <variant>
#include <vector>

namespace contract {

class ScriptedUser {
public:
    /// Waits at the socket `path` for the program in place of the one that shows windows; calls `windowOpened` for
    /// each window.
    ScriptedUser(const std::filesystem::path& path, std::function<void()> windowOpened);
    ~ScriptedUser();
    ScriptedUser(const ScriptedUser&) = delete;
    ScriptedUser& operator=(const ScriptedUser&) = delete;

    void pressAlertButton(std::size_t index);
    void tickAlertCheckBox();
    void pressPanelButton(std::string_view label);
    void closePanel();

private:
    using Window = std::variant<platform::linux::AlertRequest, platform::linux::PanelRequest>;

    unsigned watch(int descriptor, GUnixFDSourceFunc ready);
    void letIn();
    void listenToProgram();
    void open(Window window);
    void hangUp();
    void tell(const platform::linux::Event& event) const;

    template <typename Kind>
    const Kind* topmost() const;

    std::function<void()> _windowOpened;
    int _door;
    unsigned _doorSource;
    int _line = -1;
    unsigned _lineSource = 0;
    std::vector<Window> _windows;
};

} // namespace contract
