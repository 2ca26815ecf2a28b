// The methods behind Shims.h. Setters of what GNUstep cannot show do nothing: the message tests watch that they are
// sent. The menu bar is a strip of a window at the top of the screen.

#import "tests/macos/shims/Heard.hpp"

#include <objc/runtime.h>

#include <array>
#include <chrono>
#include <cstring>
#include <map>
#include <mutex>
#include <thread>

// Some of the methods replace GNUstep's own.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

// Alerts: a check box joins the buttons in the alert's window

namespace {

std::map<NSAlert*, NSButton*> suppressionButtons;
NSButton* suppressionButtonOfNextWindow = nil;
IMP runAlert;
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

@interface NSAlert (ShimMethods)
- (void)setShowsSuppressionButton:(BOOL)shows;
@end

@implementation NSAlert (ShimMethods)

+ (void)load {
    runAlert = method_setImplementation(class_getInstanceMethod(self, @selector(runModal)),
                                        reinterpret_cast<IMP>(runAlertWithSuppressionButton));
    runWindow =
        method_setImplementation(class_getInstanceMethod([NSApplication class], @selector(runModalForWindow:)),
                                 reinterpret_cast<IMP>(runWindowWithSuppressionButton));
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

// Windows

namespace {

/// The buttons in the title bars, which nobody sees here: close, miniaturise, zoom. Kept, since few windows ask.
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

// The running program

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

// Fonts and colours

@interface NSFont (ShimMethods)
@end

@implementation NSFont (ShimMethods)

+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
    (void)weight;
    return [NSFont userFixedPitchFontOfSize:fontSize];
}

@end

@interface NSColor (ShimMethods)
@end

@implementation NSColor (ShimMethods)

+ (NSColor*)linkColor {
    return [NSColor colorWithCalibratedRed:0 green:0.3 blue:0.8 alpha:1];
}

@end

// Sounds

/// An MPEG-4 sound, silent here.
@interface MpegSound : NSSound
@end

namespace {

int beepCount = 0;

} // namespace

int beeps() { return beepCount; }

#undef NSBeep

void countedBeep() {
    ++beepCount;
    NSBeep();
}

@implementation MpegSound

- (BOOL)play {
    return YES;
}

@end

@interface NSSound (ShimMethods)
@end

@implementation NSSound (ShimMethods)

- (id)initWithContentsOfURL:(NSURL*)url byReference:(BOOL)byReference {
    NSData* const bytes = [NSData dataWithContentsOfURL:url];
    if ([bytes length] > 8 && std::memcmp(static_cast<const char*>([bytes bytes]) + 4, "ftyp", 4) == 0) {
        [self release];
        return [[MpegSound alloc] init];
    }
    return [self initWithContentsOfFile:[url path] byReference:byReference];
}

@end

// Settings

@interface NSUserDefaults (ShimMethods)
@end

@implementation NSUserDefaults (ShimMethods)

- (NSString*)stringForKey:(NSString*)key {
    const id value = [self objectForKey:key];
    if ([value isKindOfClass:[NSNumber class]]) {
        return [value stringValue];
    }
    return [value isKindOfClass:[NSString class]] ? value : nil;
}

@end

// The menu bar

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

// The unified log

struct os_log_s {
    std::string subsystem;
    std::string category;
};

namespace {

int createdLogCount = 0;
std::mutex logMutex; // Apple's log is for all threads

} // namespace

std::vector<LogEntry>& logEntries() {
    static std::vector<LogEntry> entries;
    return entries;
}

int createdLogs() { return createdLogCount; }

os_log_t os_log_create(const char* subsystem, const char* category) {
    std::this_thread::sleep_for(std::chrono::milliseconds{10}); // so that whoever else wants one comes meanwhile
    const std::lock_guard lock{logMutex};
    ++createdLogCount;
    static std::map<std::pair<std::string, std::string>, os_log_s> logs; // one for each name, as Apple's are
    return &logs.try_emplace({subsystem, category}, os_log_s{subsystem, category}).first->second;
}

bool os_log_type_enabled(os_log_t oslog, os_log_type_t type) { return oslog && type == OS_LOG_TYPE_ERROR; }

void logEntry(os_log_t log, os_log_type_t type, const char* format, const char* argument) {
    const std::lock_guard lock{logMutex};
    logEntries().push_back({log->subsystem, log->category, type, format, argument});
}
