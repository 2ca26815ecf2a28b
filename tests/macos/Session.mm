#import "tests/macos/Session.hpp"

#import "platform/macos/MacDesktop.hpp"
#import "platform/macos/Strings.hpp"

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <algorithm>
#include <map>
#include <utility>

using macos_tests::Session;

namespace {

bool isFirstProgram = true;
bool isTerminating = false;
int modalSessions = 0; ///< How many alerts and panels have been run so far.
NSStatusItem* statusItem = nil;

IMP runAlert;
IMP runModalForWindow;
IMP statusItemWithLength;
IMP initSound;

NSInteger countedRunAlert(id self, SEL selector) {
    ++modalSessions;
    return reinterpret_cast<NSInteger (*)(id, SEL)>(runAlert)(self, selector);
}

NSInteger countedRunModalForWindow(id self, SEL selector, NSWindow* window) {
    ++modalSessions;
    return reinterpret_cast<NSInteger (*)(id, SEL, NSWindow*)>(runModalForWindow)(self, selector, window);
}

NSStatusItem* rememberedStatusItemWithLength(id self, SEL selector, CGFloat length) {
    statusItem =
        reinterpret_cast<NSStatusItem* (*)(id, SEL, CGFloat)>(statusItemWithLength)(self, selector, length);
    return statusItem;
}

/// Instead of ending the process, has the session end the program.
void terminate(id, SEL, id) { isTerminating = true; }

std::map<id, std::string> soundFiles;
std::map<Method, IMP> playMethods; ///< What was there before `notedPlay`.

BOOL notedPlay(id self, SEL selector) {
    macos_tests::playedSounds().push_back(soundFiles[self]);
    const IMP original = playMethods.at(class_getInstanceMethod(object_getClass(self), selector));
    return reinterpret_cast<BOOL (*)(id, SEL)>(original)(self, selector);
}

/// Notes the sound's file, and listens to it, whatever class it turns out to be of.
id notedInitSound(id self, SEL selector, NSURL* url, BOOL byReference) {
    const id sound = reinterpret_cast<id (*)(id, SEL, NSURL*, BOOL)>(initSound)(self, selector, url, byReference);
    if (sound) {
        soundFiles[sound] = macos::fromCocoa([[url path] lastPathComponent]);
        Method const play = class_getInstanceMethod(object_getClass(sound), @selector(play));
        if (!playMethods.contains(play)) {
            playMethods[play] = method_setImplementation(play, reinterpret_cast<IMP>(notedPlay));
        }
    }
    return sound;
}

void listenToSounds() {
    const SEL selector = @selector(initWithContentsOfURL:byReference:);
    if (!initSound) {
        initSound = method_setImplementation(class_getInstanceMethod([NSSound class], selector),
                                             reinterpret_cast<IMP>(notedInitSound));
    }
}

IMP replace(Class kind, SEL selector, IMP implementation) {
    return method_setImplementation(class_getInstanceMethod(kind, selector), implementation);
}

} // namespace

/// Takes the place of AppKit's function of that name, since linkers prefer a program's own functions to a
/// library's. AppKit's ends the process, GNUstep's takes the display down: no second program could run here.
extern "C" int NSApplicationMain(int, const char**) {
    if (std::exchange(isFirstProgram, false)) {
        [NSApp run];
    } else { // an application is launched once
        NSNotification* const launch =
            [NSNotification notificationWithName:NSApplicationDidFinishLaunchingNotification object:NSApp];
        [[NSApp delegate] applicationDidFinishLaunching:launch];
        [NSApp run];
    }
    return 0;
}

/// Calls the session back from the run loop.
@interface SessionClock : NSObject {
    Session* _session;
}
- (instancetype)initWithSession:(Session&)session;
- (void)tick:(NSTimer*)timer;
@end

@implementation SessionClock

+ (void)initialize {
    replace([NSApplication class], @selector(terminate:), reinterpret_cast<IMP>(terminate));
    runAlert = replace([NSAlert class], @selector(runModal), reinterpret_cast<IMP>(countedRunAlert));
    runModalForWindow = replace([NSApplication class], @selector(runModalForWindow:),
                                reinterpret_cast<IMP>(countedRunModalForWindow));
    statusItemWithLength = replace([NSStatusBar class], @selector(statusItemWithLength:),
                                   reinterpret_cast<IMP>(rememberedStatusItemWithLength));
}

- (instancetype)initWithSession:(Session&)session {
    if ((self = [super init])) {
        _session = &session;
    }
    return self;
}

- (void)tick:(NSTimer*)timer {
    @try {
        _session->tick(timer);
    } @catch (NSException* exception) { // the run loop would swallow it
        ADD_FAILURE() << [[exception description] UTF8String];
    }
}

@end

namespace macos_tests {
namespace {

using Clock = std::chrono::steady_clock;

void collect(NSView* view, Class kind, NSMutableArray* found) {
    if ([view isKindOfClass:kind]) {
        [found addObject:view];
    }
    for (NSView* each in [view subviews]) {
        collect(each, kind, found);
    }
}

/// Lets the run loop look up, as the user's own event would.
void postEvent() {
    [NSApp postEvent:[NSEvent otherEventWithType:NSEventTypeApplicationDefined
                                        location:NSZeroPoint
                                   modifierFlags:0
                                       timestamp:0
                                    windowNumber:0
                                         context:nil
                                         subtype:0
                                           data1:0
                                           data2:0]
             atStart:NO];
}

} // namespace

Session::Session() {
    [SessionClock class];
    NSString* const name = [[NSProcessInfo processInfo] processName];
    NSString* const identifier = [@"org.marvelode.Timer." stringByAppendingString:name]; // what a Mac goes by
    for (NSString* domain in @[ name, identifier ]) {
        [[NSUserDefaults standardUserDefaults] removePersistentDomainForName:domain];
    }
}

Session::~Session() = default;

int Session::run(const std::vector<std::string>& arguments, milliseconds limit, const Program& program) {
    @autoreleasepool {
        NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
        NSMutableDictionary* const domain = [NSMutableDictionary dictionary];
        for (const auto& [key, value] : platform::argumentDomain(arguments)) {
            [domain setObject:macos::toCocoa(value) forKey:macos::toCocoa(key)];
        }
        [defaults removeVolatileDomainForName:NSArgumentDomain];
        [defaults setVolatileDomain:domain forName:NSArgumentDomain];

        std::vector<const char*> argv{"program"};
        for (const std::string& each : arguments) {
            argv.push_back(each.c_str());
        }
        argv.push_back(nullptr);

        isTerminating = false;
        _ranOut = false;
        _isRunning = true;
        _end = Clock::now() + limit;
        macos::MacDesktop desktop;
        listenToSounds(); // not earlier: GNUstep looks for resources as soon as it hears of sounds
        startClock();
        const int status = program(static_cast<int>(arguments.size() + 1), argv.data());
        _isRunning = false;
        _agenda.clear();
        statusItem = nil;
        return status;
    }
}

void Session::when(std::function<bool()> isDue, std::function<void()> deed) {
    _agenda.push_back({std::move(isDue), std::move(deed)});
}

void Session::after(milliseconds delay, std::function<void()> deed) {
    when([due = Clock::now() + delay] { return Clock::now() >= due; }, std::move(deed));
}

void Session::onceShown(std::function<void()> deed) {
    when([before = modalSessions] { return modalSessions > before && [frontWindow() isVisible]; }, std::move(deed));
}

void Session::startClock() {
    SessionClock* const clock = [[[SessionClock alloc] initWithSession:*this] autorelease];
    NSTimer* const timer = [NSTimer timerWithTimeInterval:0.004
                                                   target:clock
                                                 selector:@selector(tick:)
                                                 userInfo:nil
                                                  repeats:YES];
    for (NSString* mode in @[ NSDefaultRunLoopMode, NSModalPanelRunLoopMode, NSEventTrackingRunLoopMode ]) {
        [[NSRunLoop currentRunLoop] addTimer:timer forMode:mode];
    }
}

void Session::tick(NSTimer* clock) {
    if (!_isRunning) {
        [clock invalidate];
        return;
    }
    if (Clock::now() > _end) {
        _ranOut = true;
        isTerminating = true;
    }
    if (isTerminating) {
        [NSApp stop:nil]; // one modal session at a time, and at last the run loop
        postEvent();
        return;
    }
    const auto due = std::find_if(_agenda.begin(), _agenda.end(), [](const Deed& deed) { return deed.isDue(); });
    if (due != _agenda.end()) {
        [clock invalidate];
        startClock(); // a timer does not fire inside its own action, and a deed may open a window
        const auto action = std::move(due->action);
        _agenda.erase(due);
        action();
    }
}

NSWindow* frontWindow() { return [NSApp modalWindow]; }

NSArray* viewsOfClass(Class kind) {
    NSMutableArray* const found = [NSMutableArray array];
    collect([frontWindow() contentView], kind, found);
    return found;
}

NSButton* buttonTitled(std::string_view title) {
    for (NSButton* each in viewsOfClass([NSButton class])) {
        if ([[each title] isEqualToString:macos::toCocoa(title)]) {
            return each;
        }
    }
    return nil;
}

NSButton* alertButton(std::size_t index) {
    return [[frontWindow() contentView] viewWithTag:NSAlertFirstButtonReturn + static_cast<NSInteger>(index)];
}

NSButton* alertCheckBox() {
    for (NSButton* each in viewsOfClass([NSButton class])) {
        if ([each tag] < NSAlertFirstButtonReturn && [[each cell] showsStateBy] != NSNoCellMask) {
            return each;
        }
    }
    return nil;
}

void press(NSButton* button) {
    ASSERT_NE(button, nil) << "no such button";
    if ([button isEnabled]) {
        [[button cell] setNextState];
        [button sendAction:[button action] to:[button target]];
        postEvent();
    }
}

std::vector<std::string>& playedSounds() {
    static std::vector<std::string> played;
    return played;
}

void closeFrontWindow() { [frontWindow() close]; }

NSStatusBarButton* statusButton() { return [statusItem button]; }

NSMenu* statusMenu() { return [statusItem menu]; }

NSMenuItem* menuEntry(std::string_view title) {
    [statusMenu() update];
    return static_cast<NSMenuItem*>([statusMenu() itemWithTitle:macos::toCocoa(title)]);
}

void pick(std::string_view title) {
    NSMenuItem* const entry = menuEntry(title);
    EXPECT_NE(entry, nil) << title;
    if ([entry isEnabled]) {
        [statusMenu() performActionForItemAtIndex:[statusMenu() indexOfItem:entry]];
    }
}

void wakeMachine() {
    // straight to the observers: GNUstep's own centre takes a detour through another process
    const SEL post = @selector(postNotificationName:object:userInfo:);
    const IMP postToObservers = class_getMethodImplementation([NSNotificationCenter class], post);
    reinterpret_cast<void (*)(id, SEL, NSString*, id, id)>(postToObservers)(
        [[NSWorkspace sharedWorkspace] notificationCenter], post, NSWorkspaceDidWakeNotification, nil, nil);
}

} // namespace macos_tests
