#pragma once

// What AppKit has and GNUstep lacks, with the signatures of Apple's documentation. Included ahead of every source
// that is compiled against GNUstep; never part of the product. README.md beside this file gives the reason for
// each.

#import <AppKit/AppKit.h>

// Constants under the names that they have had since macOS 10.12

#define NSAlertStyleWarning NSWarningAlertStyle
#define NSAlertStyleInformational NSInformationalAlertStyle
#define NSAlertStyleCritical NSCriticalAlertStyle
#define NSBezelStyleRegularSquare NSRegularSquareBezelStyle
#define NSButtonTypeMomentaryPushIn NSMomentaryPushInButton
#define NSButtonTypeSwitch NSSwitchButton
#define NSEventModifierFlagCommand NSCommandKeyMask
#define NSEventTypeKeyDown NSKeyDown
#define NSEventMaskAny NSAnyEventMask
#define NSEventTypeApplicationDefined NSApplicationDefined

typedef NS_ENUM(NSInteger, NSWindowTitleVisibility) {
    NSWindowTitleVisible = 0,
    NSWindowTitleHidden = 1,
};

// A function that cannot be watched because GNUstep defines it in a header

void countedBeep();
#define NSBeep countedBeep

// Methods

NS_ASSUME_NONNULL_BEGIN

@interface NSAlert (Shims)
@property BOOL showsSuppressionButton;
@property(nullable, readonly, strong) NSButton* suppressionButton;
@end

@interface NSApplication (Shims)
@property(getter=isFullKeyboardAccessEnabled, readonly) BOOL fullKeyboardAccessEnabled;
@end

@interface NSColor (Shims)
@property(class, strong, readonly) NSColor* controlAccentColor;
@end

@interface NSFont (Shims)
+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight;
@end

@interface NSStatusBarButton (Shims)
- (NSInteger)sendActionOn:(NSEventMask)mask;
@end

@interface NSStatusItem (Shims)
@property(nullable, readonly, strong) NSStatusBarButton* button;
@end

typedef NSString* NSAccessibilityRole;

@interface NSTimer (Shims)
@property NSTimeInterval tolerance;
@end

@interface NSView (Shims)
- (NSRect)alignmentRectForFrame:(NSRect)frame;
- (NSRect)frameForAlignmentRect:(NSRect)alignmentRect;
@property(nullable, copy) NSString* accessibilityLabel;
@property(nullable, copy) NSAccessibilityRole accessibilityRole;
@end

@interface NSWindow (Shims)
@property BOOL preventsApplicationTerminationWhenModal;
@property NSWindowStyleMask styleMask;
@property NSWindowTitleVisibility titleVisibility;
@property BOOL titlebarAppearsTransparent;
@end

NS_ASSUME_NONNULL_END
