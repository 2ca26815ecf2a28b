#pragma once

// What the user is told on a desktop that has no place for status items: that the timer runs, and how to reach it.
// It waits a moment first, since panels start late and restart, and while the screen is locked, since GNOME has
// none then; it takes its message back when one appears.

#include "platform/linux/glib/BusCall.hpp"
#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/trayless/Notification.hpp"

#include <functional>
#include <string_view>

namespace platform::linux {

class TraylessNotice {
public:
    /// Calls `appear` when the timer's own window should stand in for the status item, `disappear` when it need not
    /// any longer, `open` when the user asks for that window, and `pick` with the title of a menu entry; before the
    /// last two, `activationTokenCame` with what lets a window come to the front.
    TraylessNotice(
        GDBusConnection* sessionBus, std::function<void()> appear, std::function<void()> disappear,
        std::function<void()> open, std::function<void(std::string_view entry)> pick,
        std::function<void(const char*)> activationTokenCame = [](const char*) {});
    ~TraylessNotice();
    TraylessNotice(const TraylessNotice&) = delete;
    TraylessNotice& operator=(const TraylessNotice&) = delete;

    /// Tells whether there is a panel that shows status items.
    void trayChanged(bool isPresent);

private:
    void wait();
    void tellUnlessLocked();
    void tell();

    std::function<void()> _appear;
    std::function<void()> _disappear;
    ObjectHandle<GDBusConnection> _sessionBus;
    Notification _notification;
    BusCall _lockQuestion;
    DelayedCall _patience;
    unsigned _lockSubscription;
    bool _isTrayMissing = false;
    bool _isTold = false;
};

} // namespace platform::linux
