#pragma once

// The panel that collects status items, found on the session bus by the name of its watcher. Panels come late,
// restart and give way to others; the program's item is offered to each in turn.

#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/glib/BusCall.hpp"

#include <array>
#include <functional>
#include <string>
#include <string_view>

namespace platform::linux {

class Tray {
public:
    /// Each time a panel appears, first tells the name of its process (empty if unknown) to `appeared`, then
    /// registers this connection as the item. A refusal is told to `errorLog`. `presenceChanged` learns whether the
    /// item is in a panel where the user can see it, at first and whenever that may have changed.
    Tray(GDBusConnection* bus, std::function<void(std::string_view processName)> appeared,
         std::function<void(bool isPresent)> presenceChanged, ErrorLog& errorLog);
    ~Tray();
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

private:
    void panelAppeared(const char* owner);
    void panelVanished();
    void registerItem();
    void askForHost();

    ObjectHandle<GDBusConnection> _bus;
    std::function<void(std::string_view)> _appeared;
    std::function<void(bool)> _presenceChanged;
    ErrorLog& _errorLog;
    BusCall _processQuestion;
    BusCall _registration;
    BusCall _hostQuestion;
    bool _isWatcherThere = false;
    unsigned _watch;
    std::array<unsigned, 2> _hostSubscriptions{};
};

} // namespace platform::linux
