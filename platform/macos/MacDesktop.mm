#import "platform/macos/MacDesktop.hpp"

#include "platform/Fatal.hpp"
#import "platform/macos/Alert.hpp"
#import "platform/macos/MainMenu.hpp"
#import "platform/macos/Strings.hpp"

#import <UserNotifications/UserNotifications.h>
#import <os/log.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <mutex>
#include <string>

/// Passes on what the system tells the application. It may be told of user notifications, but asks for none.
@interface ApplicationDelegate : NSObject <NSApplicationDelegate, UNUserNotificationCenterDelegate> {
    platform::Desktop* _desktop;
}
- (instancetype)initWithDesktop:(platform::Desktop&)desktop;

/// From now on, posts it to the program when the machine woke up.
- (void)watchForWake;

@end

@implementation ApplicationDelegate

- (instancetype)initWithDesktop:(platform::Desktop&)desktop {
    if ((self = [super init])) {
        _desktop = &desktop;
    }
    return self;
}

- (void)dealloc {
    [[[NSWorkspace sharedWorkspace] notificationCenter] removeObserver:self];
    [super dealloc];
}

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
    (void)notification;
    if (_desktop->application.delegate) {
        _desktop->application.delegate->applicationDidFinishLaunching();
    }
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
    (void)application;
    return YES; // there is no state to restore
}

- (void)watchForWake {
    [[[NSWorkspace sharedWorkspace] notificationCenter] addObserver:self
                                                           selector:@selector(didWakeFromSleep:)
                                                               name:NSWorkspaceDidWakeNotification
                                                             object:nil];
}

- (void)didWakeFromSleep:(NSNotification*)notification {
    (void)notification;
    _desktop->workspaceNotifications.post(platform::NotificationCenter::Name::NSWorkspaceDidWakeNotification);
}

@end

namespace macos {
namespace {

NSUserDefaults* defaults() { return [NSUserDefaults standardUserDefaults]; }

id toCocoa(bool truth) { return [NSNumber numberWithBool:truth]; }

id toCocoa(std::int64_t number) { return [NSNumber numberWithLongLong:number]; }

id toCocoa(double number) { return [NSNumber numberWithDouble:number]; }

/// The system stretches the timers of a program that shows no window, unless it is told of an activity. The Mac may
/// still go to sleep.
NSObject* beginActivity() {
    return static_cast<NSObject*>([[NSProcessInfo processInfo]
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"Breaks are due on the second"]);
}

os_log_t logOf(const platform::Logger& logger) {
    // any thread may log
    static std::mutex mutex;
    static std::map<std::pair<std::string, std::string>, os_log_t> logs; // made once for each name
    const std::scoped_lock lock{mutex};
    os_log_t& log = logs[{logger.subsystem, logger.category}];
    if (!log) {
        log = os_log_create(logger.subsystem.c_str(), logger.category.c_str());
    }
    return log;
}

os_log_type_t typeOf(platform::Logger::Level level) {
    switch (level) {
    case platform::Logger::Level::Error:
        return OS_LOG_TYPE_ERROR;
    }
    platform::fatal();
}

} // namespace

MacDesktop::MacDesktop()
    : _applicationDelegate{[[ApplicationDelegate alloc] initWithDesktop:*this]} {
    workspaceNotifications.onFirstObserver([this] { [_applicationDelegate.get() watchForWake]; });
}

MacDesktop::~MacDesktop() {
    [NSApp setDelegate:nil];
    if (_activity.get()) {
        [[NSProcessInfo processInfo] endActivity:_activity.get()];
    }
}

int MacDesktop::run(int argc, const char* const* argv) {
    _activity = Retained<NSObject>{[beginActivity() retain]};
    [[NSApplication sharedApplication] setMainMenu:makeMainMenu()];
    [NSApp setDelegate:_applicationDelegate.get()];
    return NSApplicationMain(argc, const_cast<const char**>(argv));
}

void MacDesktop::terminate() { [NSApp terminate:nil]; }

void MacDesktop::activate(bool ignoringOtherApps) { [NSApp activateIgnoringOtherApps:ignoringOtherApps]; }

void MacDesktop::activateRunningApplication(bool ignoringOtherApps) {
    const NSApplicationActivationOptions options = ignoringOtherApps ? NSApplicationActivateIgnoringOtherApps : 0;
    [[NSRunningApplication currentApplication] activateWithOptions:options];
    activate(ignoringOtherApps); // since macOS 14 the options have no effect
}

platform::Date MacDesktop::now() { return platform::Date{[[NSDate date] timeIntervalSince1970]}; }

void MacDesktop::schedule(const std::shared_ptr<platform::Timer>& timer) { _timers.schedule(timer); }

void MacDesktop::cancel(const platform::Timer& timer) { _timers.cancel(timer); }

void MacDesktop::showStatusItem(const std::shared_ptr<platform::NSStatusItem>& item) { _statusItem.emplace(item); }

void MacDesktop::statusItemChanged() {
    if (_statusItem) {
        _statusItem->update();
    }
}

int MacDesktop::runAlert(platform::NSAlert& alert) { return macos::runAlert(alert); }

void MacDesktop::runModal(platform::NSPanel& model, const platform::View& content) {
    Panel panel{model, content};
    if (_centered == &model) {
        _centered = nullptr;
        panel.center();
    }
    _running.push_back(&panel);
    panel.runModal();
    _running.pop_back();
}

void MacDesktop::stopModal() {
    [NSApp stopModal];
    // A modal loop looks up only after an event, and a timer or a notification that brought us here is none.
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

void MacDesktop::center(platform::NSPanel& panel) { _centered = &panel; }

void MacDesktop::close(platform::NSPanel& model) {
    const auto found =
        std::find_if(_running.begin(), _running.end(), [&](const Panel* each) { return each->shows(model); });
    if (found != _running.end()) {
        (*found)->close();
    } else if (model.delegate) {
        model.delegate->windowWillClose();
    }
}

bool MacDesktop::boolForKey(std::string_view key) { return [defaults() boolForKey:toCocoa(key)]; }

std::int64_t MacDesktop::integerForKey(std::string_view key) { return [defaults() integerForKey:toCocoa(key)]; }

std::optional<std::string> MacDesktop::stringForKey(std::string_view key) {
    NSString* const text = [defaults() stringForKey:toCocoa(key)];
    return text ? std::optional{fromCocoa(text)} : std::nullopt;
}

void MacDesktop::setDefault(platform::DefaultsValue value, std::string_view key) {
    const id object = std::visit([](const auto& each) -> id { return toCocoa(each); }, value);
    [defaults() setObject:object forKey:toCocoa(key)];
}

std::optional<std::filesystem::path> MacDesktop::resource(std::string_view name, std::string_view extension) {
    NSURL* const url = [[NSBundle mainBundle] URLForResource:toCocoa(name) withExtension:toCocoa(extension)];
    return url ? std::optional{std::filesystem::path{fromCocoa([url path])}} : std::nullopt;
}

std::optional<std::string> MacDesktop::contentsOf(const std::filesystem::path& url) {
    NSData* const data = [NSData dataWithContentsOfURL:[NSURL fileURLWithPath:toCocoa(url.native())]];
    if (!data) {
        return std::nullopt;
    }
    std::string bytes([data length], '\0');
    [data getBytes:bytes.data() length:bytes.size()];
    return bytes;
}

std::optional<platform::NSImage> MacDesktop::imageNamed(std::string_view name) {
    NSImage* const image = [NSImage imageNamed:toCocoa(name)];
    NSString* const path = [[NSBundle mainBundle] pathForImageResource:toCocoa(name)];
    if (![image isValid] || !path) {
        return std::nullopt;
    }
    return platform::NSImage{std::string{name}, fromCocoa(path), {[image size].width, [image size].height}};
}

bool MacDesktop::canPlay(const std::filesystem::path& url) { return _sounds.open(url); }

bool MacDesktop::play(const platform::NSSound& sound) { return _sounds.play(sound.url); }

void MacDesktop::beep() { NSBeep(); }

void MacDesktop::print(std::string_view line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
    std::fflush(stdout);
}

bool MacDesktop::isLogEnabled(const platform::Logger& logger, platform::Logger::Level level) {
    return os_log_type_enabled(logOf(logger), typeOf(level));
}

void MacDesktop::log(const platform::Logger& logger, platform::Logger::Level level, std::string_view message) {
    const std::string text{message};
    os_log_with_type(logOf(logger), typeOf(level), "%{public}s", text.c_str());
}

} // namespace macos
