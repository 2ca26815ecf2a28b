// The menu bar: a strip of a window at the top of the screen.

#import <AppKit/AppKit.h>

// Some of the methods replace GNUstep's own.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

/// Opens the item's menu when it is pressed.
@interface StripButton : NSStatusBarButton {
    NSStatusItem* _item;
}
- (instancetype)initWithFrame:(NSRect)frame item:(NSStatusItem*)item;
@end

@implementation StripButton

- (instancetype)initWithFrame:(NSRect)frame item:(NSStatusItem*)item {
    if ((self = [super initWithFrame:frame])) {
        _item = item;
        [self setBordered:NO];
        [self setTitle:@""];
    }
    return self;
}

- (void)mouseDown:(NSEvent*)event {
    [NSMenu popUpContextMenu:[_item menu] withEvent:event forView:self];
}

@end

/// A status item in a window of its own.
@interface StripItem : NSStatusItem {
    NSWindow* _window;
    StripButton* _button;
    NSMenu* _stripMenu;
}
- (instancetype)initWithLength:(CGFloat)length;
- (void)remove;
@end

@implementation StripItem

- (instancetype)initWithLength:(CGFloat)length {
    if ((self = [super init])) {
        const NSRect screen = [[NSScreen mainScreen] frame];
        const NSRect frame = NSMakeRect(NSMaxX(screen) - length - 200, NSMaxY(screen) - 28, length, 28);
        _window = [[NSWindow alloc] initWithContentRect:frame
                                              styleMask:NSBorderlessWindowMask
                                                backing:NSBackingStoreBuffered
                                                  defer:NO];
        [_window setReleasedWhenClosed:NO];
        [_window setLevel:NSStatusWindowLevel];
        _button = [[StripButton alloc] initWithFrame:NSMakeRect(0, 0, length, 28) item:self];
        [_window setContentView:_button];
        [_window orderFront:nil];
    }
    return self;
}

- (void)dealloc {
    [_window release];
    [_button release];
    [_stripMenu release];
    [super dealloc];
}

- (NSStatusBarButton*)button {
    return _button;
}

- (NSMenu*)menu {
    return _stripMenu;
}

- (void)setMenu:(NSMenu*)menu {
    [_stripMenu autorelease];
    _stripMenu = [menu retain];
}

- (void)remove {
    [_window close];
}

@end

@interface NSStatusBar (ShimMethods)
@end

@implementation NSStatusBar (ShimMethods)

+ (NSStatusBar*)systemStatusBar {
    static NSStatusBar* const bar = [[NSStatusBar alloc] init];
    return bar;
}

- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
    return [[[StripItem alloc] initWithLength:length] autorelease];
}

- (void)removeStatusItem:(NSStatusItem*)item {
    [static_cast<StripItem*>(item) remove];
}

@end
