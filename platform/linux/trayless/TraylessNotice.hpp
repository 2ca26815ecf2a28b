#pragma once

// What the user is told on a desktop that has no place for status items: that the timer runs, and how to reach it.
// It waits a moment first, since panels start late and restart, and while the screen is locked, since GNOME has
// none then; it takes its message back when one appears.

#include "platform/linux/glib/BusCall.hpp"
#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/trayless/Notification.hpp"
#include "platform/linux/trayless/StandInWindow.hpp"

#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform::linux {

class TraylessNotice {
public:
    /// Shows `window` while the status item is in no panel, opens it when the user asks for it in the message, and
    /// calls `pick` with the title of a menu entry that the user chose there; `activationToken` keeps what the
    /// desktop hands out with either.
    TraylessNotice(GDBusConnection* sessionBus, StandInWindow& window,
                   std::function<void(std::string_view entry)> pick, ActivationToken& activationToken);
    ~TraylessNotice();
    TraylessNotice(const TraylessNotice&) = delete;
    TraylessNotice& operator=(const TraylessNotice&) = delete;

    /// Offers the menu entries of those titles in the message, behind the window itself.
    void offer(std::vector<std::string> entries) { _entries = std::move(entries); }

    /// Tells whether there is a panel that shows status items.
    void trayChanged(bool isPresent);

private:
    void wait();
    void listenToLock();
    void tellUnlessLocked();
    void tell();

    StandInWindow& _window;
    ObjectHandle<GDBusConnection> _sessionBus;
    Notification _notification;
    BusCall _lockQuestion;
    DelayedCall _patience;
    unsigned _lockSubscription = 0;
    std::vector<std::string> _entries;
    bool _isTrayMissing = false;
    bool _isTold = false;
};

} // namespace platform::linux
