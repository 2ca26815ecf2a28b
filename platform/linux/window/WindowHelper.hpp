#pragma once

// Shows alerts and panels through a program of its own, so that the resident program needs no toolkit. That program
// runs while a window is up; if it cannot, or dies, every window it showed counts as closed by the user.

#include "platform/NSAlert.hpp"
#include "platform/NSPanel.hpp"
#include "platform/View.hpp"
#include "platform/linux/ActivationToken.hpp"
#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/HelperProgram.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform::linux {

class WindowProcess;

class WindowHelper {
public:
    /// Shows windows with `program`, which must outlive this object. `iterate` runs the main context once and may
    /// block until something happened; `errorLog` is told why windows could not be shown; `activationToken` is
    /// taken by a panel, which the user has asked for.
    WindowHelper(const HelperProgram& program, std::function<void()> iterate, ErrorLog& errorLog,
                 ActivationToken& activationToken);
    ~WindowHelper();
    WindowHelper(const WindowHelper&) = delete;
    WindowHelper& operator=(const WindowHelper&) = delete;

    /// Shows the alert on top of all windows and waits for the answer, keeping its check box up to date; returns
    /// `NSAlert::Stopped` if it was closed without one, or could not be shown.
    int runAlert(NSAlert& alert);

    /// Shows the panel on top of all windows and runs the operations of the controls in `content` as the user uses
    /// them, until `stopModal()`. A panel that the user or an accident closes is told so by `NSPanel::close`.
    void runModal(NSPanel& panel, const View& content);

    /// Makes the innermost `runModal` return; does nothing if there is none.
    void stopModal();

    /// Whether an alert or a panel is being run.
    bool isShowing() const { return !_sessions.empty(); }

    /// Makes every `runAlert` and `runModal` return, without telling any panel.
    void closeAll();

    /// Calls `shown` once the next window is on the screen, or destroys it uncalled when that window turns out not
    /// to come: after half a minute at the latest.
    void awaitNext(std::function<void()> shown) { _awaiting = std::move(shown); }

    /// What still waits for a window, which is forgotten here; empty if nothing does.
    std::function<void()> takeAwaiting() { return std::exchange(_awaiting, {}); }

private:
    class Session;

    std::optional<int> show(NSAlert& alert);
    void tellIfShown();

    const HelperProgram& _program;
    std::function<void()> _iterate;
    ErrorLog& _errorLog;
    ActivationToken& _activationToken;
    std::unique_ptr<WindowProcess> _process; ///< Exists exactly while there are sessions.
    std::vector<Session*> _sessions;         ///< One for each window, the topmost last.
    std::uint32_t _lastWindow = 0;
    std::function<void()> _awaiting;
};

} // namespace platform::linux
