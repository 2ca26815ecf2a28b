#import "platform/macos/Alert.hpp"

#include "platform/Fatal.hpp"
#import "platform/macos/InFront.hpp"
#import "platform/macos/Retained.hpp"
#import "platform/macos/Strings.hpp"

#import <AppKit/AppKit.h>

namespace macos {
namespace {

NSAlertStyle styleOf(const platform::NSAlert& model) {
    switch (model.alertStyle) {
    case platform::NSAlert::Style::Warning:
        return NSAlertStyleWarning;
    case platform::NSAlert::Style::Informational:
        return NSAlertStyleInformational;
    case platform::NSAlert::Style::Critical:
        return NSAlertStyleCritical;
    }
    platform::fatal();
}

/// The check box of `alert`, set up like `model`.
NSButton* showSuppressionButton(NSAlert* alert, const platform::NSSuppressionButton& model) {
    [alert setShowsSuppressionButton:YES];
    NSButton* const button = [alert suppressionButton];
    if (!button) {
        platform::fatal();
    }
    [button setState:static_cast<NSInteger>(model.state)];
    [button setTitle:toCocoa(model.title)];
    return button;
}

/// Runs `alert` above all other windows, whichever program is active, and returns the answer.
NSInteger runInFront(NSAlert* alert) {
    NSWindow* const window = [alert window];
    keepInFront(window, NSModalPanelWindowLevel);
    [window setPreventsApplicationTerminationWhenModal:NO]; // no reminder stands in the way of logging out
    [window performSelector:@selector(orderFrontRegardless) // once the alert has been laid out
                 withObject:nil
                 afterDelay:0
                    inModes:@[ NSModalPanelRunLoopMode ]];
    const NSInteger answer = [alert runModal];
    [NSObject cancelPreviousPerformRequestsWithTarget:window];
    return answer;
}

} // namespace

int runAlert(platform::NSAlert& model) {
    const Retained<NSAlert> owned{[[NSAlert alloc] init]};
    NSAlert* const alert = owned.get();
    [alert setAlertStyle:styleOf(model)];
    [alert setIcon:model.icon ? [NSImage imageNamed:toCocoa(*model.icon)] : nil];
    [alert setMessageText:toCocoa(model.messageText)];
    [alert setInformativeText:toCocoa(model.informativeText)];
    if (model.hasOwnButtons()) { // or else AppKit adds its own, in the user's language
        for (const std::string& title : model.buttons()) {
            [alert addButtonWithTitle:toCocoa(title)];
        }
    }
    platform::NSSuppressionButton* const suppression = model.suppressionButton();
    NSButton* const button = suppression ? showSuppressionButton(alert, *suppression) : nil;

    const NSInteger answer = runInFront(alert);
    if (suppression) {
        suppression->state = static_cast<platform::NSSuppressionButton::StateValue>([button state]);
    }
    return answer < NSAlertFirstButtonReturn ? platform::NSAlert::Stopped : static_cast<int>(answer);
}

} // namespace macos
