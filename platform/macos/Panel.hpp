#pragma once

// A panel on screen. It exists only while it is being run; the program's panel says what it is like, and keeps
// that from one run to the next.

#include "platform/NSPanel.hpp"
#include "platform/macos/HostingView.hpp"
#include "platform/macos/Retained.hpp"

#import <AppKit/AppKit.h>

@class PanelDelegate;

namespace macos {

class Panel {
public:
    /// Builds the panel around `content`, off the screen; both must outlive it.
    Panel(platform::NSPanel& model, const platform::View& content);
    Panel(const Panel&) = delete;
    Panel& operator=(const Panel&) = delete;
    ~Panel();

    bool shows(const platform::NSPanel& model) const { return &_model == &model; }

    /// Puts the panel into the middle of the screen.
    void center();

    /// Shows the panel and returns when the modal session has been stopped.
    void runModal();

    /// Takes the panel off the screen; the delegate of the program's panel is told.
    void close();

private:
    platform::NSPanel& _model;
    Retained<NSPanel> _panel;
    Retained<HostingView> _contentView;
    Retained<PanelDelegate> _delegate;
};

} // namespace macos
