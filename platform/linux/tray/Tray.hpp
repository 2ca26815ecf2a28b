#pragma once

// The panel that collects status items, found on the session bus by the name of its watcher. Panels come late,
// restart and give way to others; the program's item is offered to each in turn, and again to one that failed to
// take it.

#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/glib/BusCall.hpp"
#include "platform/linux/glib/DelayedCall.hpp"

#include <array>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform::linux {

class Tray {
public:
    /// Each time a panel appears, first calls `appeared` with the name of its process (empty if unknown), then
    /// registers this connection as the item. The first of a panel's refusals in a row is added to `errorLog`.
    /// `presenceChanged` is told whether the item is registered with a panel that shows it: at first, and whenever
    /// that has changed.
    Tray(GDBusConnection* bus, std::function<void(std::string_view processName)> appeared,
         std::function<void(bool isPresent)> presenceChanged, ErrorLog& errorLog);
    ~Tray();
    Tray(const Tray&) = delete;
    Tray& operator=(const Tray&) = delete;

    bool isPresent() const { return _isPresent.value_or(false); }

private:
    void watcherAppeared(const char* owner);
    void watcherVanished();
    void registerItem();
    void registrationFailed(std::string_view reason);
    void panelsChanged();
    void askForPanel();
    void setPresence(bool isPresent);

    ObjectHandle<GDBusConnection> _bus;
    std::function<void(std::string_view)> _appeared;
    std::function<void(bool)> _presenceChanged;
    ErrorLog& _errorLog;
    BusCall _processQuestion;
    BusCall _registration;
    DelayedCall _nextRegistration; ///< Pending while the watcher has not taken the item.
    std::chrono::seconds _retryDelay{};
    BusCall _panelQuestion;
    DelayedCall _nextPanelQuestion;
    bool _isRegistered = false;
    bool _isAnswerOutdated = false; ///< Of the question that is under way.
    std::optional<bool> _isPresent;
    unsigned _watch;
    std::array<unsigned, 2> _panelSubscriptions{};
};

} // namespace platform::linux
