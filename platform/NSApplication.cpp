#include "platform/NSApplication.hpp"

#include "platform/Desktop.hpp"

namespace platform {

/// Counts one alert or panel as up for as long as it exists.
class NSApplication::ModalSession {
public:
    ModalSession(NSApplication& application, bool preventsTermination)
        : _application{application}
        , _preventsTermination{preventsTermination} {
        ++_application._modalSessions;
        _application._panelsThatPreventTermination += _preventsTermination;
        desktop().menuChanged(); // the menu's entries are disabled from here on
    }
    ~ModalSession() {
        --_application._modalSessions;
        _application._panelsThatPreventTermination -= _preventsTermination;
        desktop().menuChanged();
    }
    ModalSession(const ModalSession&) = delete;
    ModalSession& operator=(const ModalSession&) = delete;

private:
    NSApplication& _application;
    int _preventsTermination;
};

NSApplication& NSApplication::shared() { return desktop().application; }

void NSApplication::activate(bool ignoringOtherApps) { desktop().activate(ignoringOtherApps); }

void NSApplication::terminate() {
    if (_panelsThatPreventTermination == 0) {
        desktop().terminate();
    }
}

void NSApplication::runModal(NSPanel& panel) {
    const ModalSession session{*this, panel.preventsApplicationTerminationWhenModal};
    const View content = panel.contentView ? panel.contentView->rootView() : VStack({});
    content.appear();
    desktop().runModal(panel, content);
}

void NSApplication::stopModal() { desktop().stopModal(); }

int NSAlert::runModal() {
    const NSApplication::ModalSession session{NSApplication::shared(), false};
    return desktop().runAlert(*this);
}

void NSAlert::setShowsSuppressionButton(bool shows) {
    if (!shows) {
        _suppressionButton.reset();
    } else if (!_suppressionButton) {
        _suppressionButton.emplace();
    }
}

void NSPanel::center() { desktop().center(*this); }

void NSPanel::close() { desktop().close(*this); }

NSRunningApplication& NSRunningApplication::current() {
    static NSRunningApplication application;
    return application;
}

void NSRunningApplication::activate(ActivationOptions options) {
    desktop().activateRunningApplication((options & ActivateIgnoringOtherApps) != 0);
}

int NSApplicationMain(int argc, const char* const* argv) { return desktop().run(argc, argv); }

} // namespace platform
