#pragma once

// The running program: its run loop, the modal sessions on top of it, and its end. What the program itself does at
// launch is up to its delegate.

#include <memory>

namespace platform {

class NSAlert;
class NSPanel;

/// Told when the program has been launched.
class NSApplicationDelegate {
public:
    virtual ~NSApplicationDelegate() = default;
    virtual void applicationDidFinishLaunching() = 0;
};

/// Adopted by programs that may be told about user notifications; no callback of it is used here.
class UNUserNotificationCenterDelegate {
public:
    virtual ~UNUserNotificationCenterDelegate() = default;
};

/// The one application object of the running program.
class NSApplication {
public:
    static NSApplication& shared();

    std::shared_ptr<NSApplicationDelegate> delegate;

    /// Brings the program's windows to the front, before those of other programs if `ignoringOtherApps` is set.
    void activate(bool ignoringOtherApps);

    /// Ends the run loop and with it the program; refused while a panel is up that prevents it.
    void terminate();

    /// Builds the panel's content, shows it, and waits until `stopModal()` is called.
    void runModal(NSPanel& panel);

    /// Ends the innermost modal session of a panel.
    void stopModal();

    /// Whether an alert or a panel is being run.
    bool isModal() const { return _modalSessions > 0; }

private:
    friend class NSAlert;
    class ModalSession;

    int _modalSessions = 0;
    int _panelsThatPreventTermination = 0;
};

/// The running program as the desktop sees it.
class NSRunningApplication {
public:
    enum ActivationOptions : unsigned { ActivateIgnoringOtherApps = 2 };

    static NSRunningApplication& current();

    /// Brings the program to the front.
    void activate(ActivationOptions options);
};

/// Tells the delegate that launching has finished and runs the loop until the program ends; returns the process's
/// status.
int NSApplicationMain(int argc, const char* const* argv);

} // namespace platform
