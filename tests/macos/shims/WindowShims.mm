// Windows, the views in them and the program that they belong to. Setters of what GNUstep cannot show do nothing:
// the message tests watch that they are sent.

#import <AppKit/AppKit.h>

#include <array>
#include <map>

// Some of the methods replace GNUstep's own.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

namespace {

/// The buttons in the title bars, which are not on screen here: close, miniaturise, zoom. Kept, since few windows
/// ask.
std::map<NSWindow*, std::array<NSButton*, 3>> standardButtons;

} // namespace

@interface NSWindow (ShimMethods)
@end

@implementation NSWindow (ShimMethods)

- (NSButton*)standardWindowButton:(NSWindowButton)button {
    const auto index = static_cast<std::size_t>(button);
    if (!([self styleMask] & NSTitledWindowMask) || index > NSWindowZoomButton) {
        return nil;
    }
    auto& buttons = standardButtons[self];
    for (NSButton*& each : buttons) {
        each = each ? each : [[NSButton alloc] initWithFrame:NSMakeRect(0, 0, 14, 16)];
    }
    return buttons.at(index);
}

- (void)setPreventsApplicationTerminationWhenModal:(BOOL)prevents {
    (void)prevents;
}

- (void)setStyleMask:(NSUInteger)styleMask {
    (void)styleMask;
}

- (void)setTitleVisibility:(NSWindowTitleVisibility)visibility {
    (void)visibility;
}

- (void)setTitlebarAppearsTransparent:(BOOL)transparent {
    (void)transparent;
}

@end

// Views

namespace {

/// The invisible margin on both sides of a view. Apple does not document the lengths; any show whether the program
/// asks for them.
CGFloat marginOf(NSView* view) {
    const bool isLabel = [view isKindOfClass:[NSTextField class]] && ![static_cast<NSTextField*>(view) isBezeled];
    return isLabel ? 2 : [view isKindOfClass:[NSPopUpButton class]] ? 3 : 0;
}

} // namespace

@interface NSView (ShimMethods)
@end

@implementation NSView (ShimMethods)

- (NSRect)alignmentRectForFrame:(NSRect)frame {
    return NSInsetRect(frame, marginOf(self), 0);
}

- (NSRect)frameForAlignmentRect:(NSRect)alignmentRect {
    return NSInsetRect(alignmentRect, -marginOf(self), 0);
}

- (void)setAccessibilityLabel:(NSString*)label {
    (void)label;
}

- (void)setAccessibilityRole:(NSString*)role {
    (void)role;
}

@end

// The program

@interface NSApplication (ShimMethods)
@end

@implementation NSApplication (ShimMethods)

- (BOOL)isFullKeyboardAccessEnabled {
    return [[NSUserDefaults standardUserDefaults] boolForKey:@"FullKeyboardAccess"]; // a name of the tests' own
}

@end

@interface NSRunningApplication (ShimMethods)
@end

@implementation NSRunningApplication (ShimMethods)

+ (id)currentApplication {
    static NSRunningApplication* const application = [[NSRunningApplication alloc] init];
    return application;
}

- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options {
    [NSApp activateIgnoringOtherApps:(options & NSApplicationActivateIgnoringOtherApps) != 0];
    return YES;
}

@end
