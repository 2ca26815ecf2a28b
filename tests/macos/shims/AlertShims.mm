// Alerts: a check box joins the buttons in the alert's window, and the window is there before the alert is run.

#import <AppKit/AppKit.h>
#include <objc/runtime.h>

#include <map>

// Some of the methods replace GNUstep's own.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

namespace {

std::map<NSAlert*, NSButton*> suppressionButtons;
NSButton* suppressionButtonOfNextWindow = nil;
IMP runAlert;
IMP setUpPanel;
IMP runWindow;

NSInteger runAlertWithSuppressionButton(id self, SEL selector) {
    suppressionButtonOfNextWindow = [self suppressionButton];
    return reinterpret_cast<NSInteger (*)(id, SEL)>(runAlert)(self, selector);
}

NSInteger runWindowWithSuppressionButton(id self, SEL selector, NSWindow* window) {
    if (suppressionButtonOfNextWindow) {
        [[window contentView] addSubview:suppressionButtonOfNextWindow];
        suppressionButtonOfNextWindow = nil;
    }
    return reinterpret_cast<NSInteger (*)(id, SEL, NSWindow*)>(runWindow)(self, selector, window);
}

} // namespace

@interface NSAlert (SecretMethods)
- (void)_setupPanel;
@end

@interface NSAlert (ShimMethods)
- (void)setShowsSuppressionButton:(BOOL)shows;
@end

@implementation NSAlert (ShimMethods)

+ (void)load {
    setUpPanel = method_setImplementation(class_getInstanceMethod(self, @selector(_setupPanel)),
                                          class_getMethodImplementation(self, @selector(setUpPanelOnce)));
    runAlert = method_setImplementation(class_getInstanceMethod(self, @selector(runModal)),
                                        reinterpret_cast<IMP>(runAlertWithSuppressionButton));
    runWindow =
        method_setImplementation(class_getInstanceMethod([NSApplication class], @selector(runModalForWindow:)),
                                 reinterpret_cast<IMP>(runWindowWithSuppressionButton));
}

- (void)setUpPanelOnce {
    if (!_window) {
        reinterpret_cast<void (*)(id, SEL)>(setUpPanel)(self, @selector(_setupPanel));
    }
}

- (id)window {
    [self _setupPanel];
    return _window;
}

- (void)setShowsSuppressionButton:(BOOL)shows {
    [suppressionButtons[self] release];
    suppressionButtons.erase(self);
    if (shows) {
        NSButton* const button = [[NSButton alloc] initWithFrame:NSMakeRect(8, 10, 188, 20)];
        [button setButtonType:NSSwitchButton];
        suppressionButtons[self] = button;
    }
}

- (NSButton*)suppressionButton {
    const auto found = suppressionButtons.find(self);
    return found == suppressionButtons.end() ? nil : found->second;
}

@end
