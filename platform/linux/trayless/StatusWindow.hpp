#pragma once

// The status item as a small window of its own: picture, text and menu. It appears where no panel shows the
// item, and opens when the user starts the program a second time. It delays no reminder,
// and comes back if its program dies.

#include "platform/NSMenu.hpp"
#include "platform/View.hpp"
#include "platform/linux/ActivationToken.hpp"
#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/HelperProgram.hpp"
#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/tray/StatusContent.hpp"
#include "platform/linux/trayless/StandInWindow.hpp"
#include "platform/linux/window/WindowProcess.hpp"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::linux {

class StatusWindow final : public StandInWindow {
public:
    /// Shows the window with `program`, which must outlive this object, when it is asked to. `pick` is given each
    /// entry that the user picks in it; `activationToken` is taken when the user asks for the window.
    StatusWindow(const HelperProgram& program, std::function<void(NSMenuItem&)> pick, ErrorLog& errorLog,
                 ActivationToken& activationToken);
    ~StatusWindow() override;
    StatusWindow(const StatusWindow&) = delete;
    StatusWindow& operator=(const StatusWindow&) = delete;

    void open() override;
    /// The same. `shown` is called once the window is on the screen, or destroyed uncalled if that comes to
    /// nothing.
    void open(std::function<void()> shown);
    void appear() override;
    void close() override;

    /// What the window shows from now on, whether it is open or not.
    void show(const StatusContent& content, const std::shared_ptr<NSMenu>& menu);

private:
    struct Entry {
        bool isEnabled;
        bool isOn;
        bool operator==(const Entry&) const = default;
    };

    Entry entryOf(const NSMenuItem& item) const;
    bool isMenuShown() const;
    View view();
    void start(bool isUnasked);
    void stop();
    void send(bool isUnasked);
    bool isAlive() const { return _process && _process->isAlive(); }
    bool isOnItsWay() const;
    void tellThoseWhoWait();
    void comeBackLater();
    void comeBack();
    void handleSoon();
    void handleEvents();
    void apply(const Event& event);

    const HelperProgram& _program;
    std::function<void(NSMenuItem&)> _pick;
    ErrorLog& _errorLog;
    ActivationToken& _activationToken;
    std::optional<NSImage> _picture;
    std::string _words;
    std::shared_ptr<NSMenu> _menu;
    std::vector<Entry> _shown;
    std::vector<NSMenuItem*> _controls; ///< The entry behind each control on screen.
    std::unique_ptr<WindowProcess> _process;
    std::vector<std::function<void()>> _awaited; ///< To be called once the window is on the screen.
    bool _isMissed = false; ///< If it is not there: it was, or was to stand in for the icon, and nobody closed it.
    bool _cameUnasked = false;
    unsigned _display = 0;   ///< On which it was started, as the session numbers it.
    std::int64_t _start = 0; ///< Of the process, in microseconds of the monotonic clock.
    DelayedCall _handling;   ///< Of what the window's program has told.
    DelayedCall _return;     ///< Pending while a program that died is to be started again.
    std::chrono::seconds _absence{};
};

} // namespace platform::linux
