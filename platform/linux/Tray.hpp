#pragma once

// The panel that collects status items, found on the session bus by the name of its watcher. Panels come late,
// restart and give way to others; the program's item is offered to each in turn.

#include "platform/linux/Handles.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform::freedesktop {

class Tray {
public:
    /// Each time a panel appears, first tells the name of its process (empty if unknown) to `appeared`, then
    /// registers this connection as the item. A refusal is told to `logError`. Calls `vanished` when there is no
    /// panel any longer, or none to begin with.
    Tray(GDBusConnection* bus, std::function<void(std::string_view processName)> appeared,
         std::function<void()> vanished, std::function<void(std::string_view)> logError);
    ~Tray();
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

private:
    void askWho(const char* owner);
    void registerItem();

    ObjectHandle<GDBusConnection> _bus;
    std::function<void(std::string_view)> _appeared;
    std::function<void()> _vanished;
    std::function<void(std::string_view)> _logError;
    std::optional<CancelledAtEnd> _panel; // cancels what is under way when the panel goes
    unsigned _watch;
};

} // namespace platform::freedesktop
