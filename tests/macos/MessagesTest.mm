// The messages that AppKit is sent, to the letter: a misspelt selector, a forgotten one, or one out of order fails
// here and not on a user's Mac. The program runs as it is, on top of GNUstep and the shims.

#include "app/App.hpp"
#include "app/Log.hpp"
#include "app/main.hpp"
#include "platform/NSApplication.hpp"
#import "tests/macos/Recorder.hpp"
#import "tests/macos/Session.hpp"
#import "tests/macos/shims/Heard.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace {

using namespace macos_tests;
using namespace std::chrono_literals;
using Lines = std::vector<std::string>;

class Messages : public testing::Test {
protected:
    Recorder& recorder = Recorder::shared();
    Session session;

    /// The whole program, recorded from its first message on.
    static int program(int argc, const char* const* argv) {
        Recorder::shared().start();
        const int status = marvelode::marvelodeTimer(argc, argv);
        platform::NSApplication::shared().delegate.reset();
        marvelode::app.reset();
        return status;
    }

    /// Runs the program until `deeds` have been done one after the other, each when it is due.
    void run(const Lines& arguments, std::vector<std::pair<std::function<bool()>, std::function<void()>>> deeds) {
        deeds.emplace_back(noWindow, [] { [NSApp terminate:nil]; });
        next(std::move(deeds), 0);
        EXPECT_EQ(session.run(arguments, 10s, program), 0);
        EXPECT_FALSE(session.ranOut());
    }

    void next(std::vector<std::pair<std::function<bool()>, std::function<void()>>> deeds, std::size_t index) {
        if (index < deeds.size()) {
            const auto isDue = deeds[index].first;
            session.when(isDue, [this, deeds = std::move(deeds), index] {
                next(deeds, index + 1);
                deeds[index].second();
            });
        }
    }

    static bool launched() { return marvelode::app && marvelode::app->state != marvelode::App::State::Init; }
    static bool noWindow() { return launched() && frontWindow() == nil; }
    static bool window() { return [frontWindow() isVisible]; }
    static bool alert() { return window() && alertButton(0) != nil; }

    static void store(NSString* key, id value) {
        [[NSUserDefaults standardUserDefaults] setObject:value forKey:key];
    }

    static Lines first(std::size_t count, Lines lines) {
        lines.resize(std::min(count, lines.size()));
        return lines;
    }
};

TEST_F(Messages, SetTheStatusItemUp) {
    recorder.watch<NSStatusItem*, CGFloat>([NSStatusBar class], "statusItemWithLength:");
    const Class item = NSClassFromString(@"StripItem");
    recorder.watch<NSStatusBarButton*>(item, "button");
    recorder.watch<void, NSMenu*>(item, "setMenu:");
    const Class button = NSClassFromString(@"StripButton");
    recorder.watch<void, id>(button, "setTarget:");
    recorder.watch<NSInteger, NSEventMask>(button, "sendActionOn:");
    recorder.watch<void, NSImage*>(button, "setImage:");
    recorder.watch<void, NSAttributedString*>(button, "setAttributedTitle:");
    recorder.watch<void, NSSize>([NSImage class], "setSize:");
    run({"-TimerInterval", "600"}, {{launched, [] {}}});

    Lines lines;
    for (const std::string& line : recorder.lines()) {
        if (line != "StripItem button") { // fetched anew each time
            lines.push_back(line);
        }
    }
    EXPECT_EQ(first(8, lines), (Lines{
                                   "NSStatusBar statusItemWithLength:50",
                                   "StripButton setTarget:StatusButtonTarget",
                                   "StripButton sendActionOn:20",
                                   "StripItem setMenu:NSMenu",
                                   "StripButton setImage:NSImage",
                                   "NSImage setSize:16x26",
                                   "StripButton setImage:NSImage", // the first state change
                                   "NSImage setSize:16x26",
                               }));
    EXPECT_EQ(lines.at(8), "StripButton setAttributedTitle:\"10m\"");
}

TEST_F(Messages, ColourTheTitle) {
    run({"-TimerInterval", "1"},
        {{launched,
          [] {
              NSDictionary* const attributes = [[statusButton() attributedTitle] attributesAtIndex:0
                                                                                    effectiveRange:nullptr];
              EXPECT_TRUE([[attributes objectForKey:NSFontAttributeName]
                  isEqual:[NSFont monospacedSystemFontOfSize:12 weight:NSFontWeightRegular]]);
          }},
         {alert, [] {
              NSDictionary* const attributes = [[statusButton() attributedTitle] attributesAtIndex:0
                                                                                    effectiveRange:nullptr];
              EXPECT_TRUE([[attributes objectForKey:NSForegroundColorAttributeName] isEqual:[NSColor redColor]]);
              press(alertButton(0));
          }}});
}

TEST_F(Messages, FillTheMenu) {
    recorder.watch<void, id>([NSMenu class], "setDelegate:");
    recorder.watch<void, BOOL>([NSMenu class], "setAutoenablesItems:");
    recorder.watch<id, NSString*, SEL, NSString*>([NSMenuItem class], "initWithTitle:action:keyEquivalent:");
    recorder.watch<void, id>([NSMenuItem class], "setTarget:");
    recorder.watch<void, BOOL>([NSMenuItem class], "setEnabled:");
    recorder.watch<void, NSInteger>([NSMenuItem class], "setState:");
    store(@"Version", @"1");
    store(@"PopupAlerts", @(1));
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Mute"); }}, {launched, [] { pick("Mute"); }}});

    EXPECT_EQ(first(1, recorder.messagesTo({"NSMenu"})), (Lines{"NSMenu setDelegate:MenuTarget"}))
        << "and automatic enabling is left on";
    const Lines lines = recorder.messagesTo({"NSMenuItem"});
    const auto setUp = [](const std::string& title, const std::string& key, const char* enabled) {
        return Lines{"NSMenuItem initWithTitle:\"" + title + "\" action:performItem: keyEquivalent:\"" + key + "\"",
                     "NSMenuItem setTarget:MenuTarget", std::string{"NSMenuItem setEnabled:"} + enabled};
    };
    Lines expected;
    for (const Lines& each :
         {setUp("About Marvelode Timer", "", "NO"), setUp("Restart timer", "r", "NO"), setUp("Mute", "", "YES"),
          setUp("Popup reminders", "", "YES"), setUp("Settings", "s", "YES"), setUp("Quit", "q", "YES")}) {
        expected.insert(expected.end(), each.begin(), each.end());
    }
    expected.insert(expected.end(), {"NSMenuItem setState:1", "NSMenuItem setState:1",
                                     "NSMenuItem setState:0"}); // popups on; mute on and off
    Lines relevant;
    for (const std::string& line : lines) { // GNUstep enables entries by setEnabled:, too, before each pick
        if (relevant.size() < 18 || line.rfind("NSMenuItem setState:", 0) == 0) {
            relevant.push_back(line);
        }
    }
    EXPECT_EQ(relevant, expected);
}

TEST_F(Messages, RunTheReminder) {
    const Class kind = [NSAlert class];
    recorder.watch<void, NSAlertStyle>(kind, "setAlertStyle:");
    recorder.watch<void, NSImage*>(kind, "setIcon:");
    recorder.watch<void, NSString*>(kind, "setMessageText:");
    recorder.watch<void, NSString*>(kind, "setInformativeText:");
    recorder.watch<NSButton*, NSString*>(kind, "addButtonWithTitle:");
    recorder.watch<void, BOOL>(kind, "setShowsSuppressionButton:");
    recorder.watch<NSButton*>(kind, "suppressionButton");
    recorder.watch<NSInteger>(kind, "runModal", true);
    recorder.watch<BOOL, NSApplicationActivationOptions>([NSRunningApplication class], "activateWithOptions:");
    run({"-TimerInterval", "1"}, {{alert, [] { press(alertButton(0)); }}});

    EXPECT_EQ(first(10, recorder.lines()),
              (Lines{
                  "NSRunningApplication activateWithOptions:2",
                  "NSAlert setAlertStyle:1",
                  "NSAlert setIcon:nil",
                  "NSAlert setMessageText:\"Marvelode Timer\"",
                  "NSAlert setInformativeText:\"Look around. Take a breath. Stretch.\"",
                  "NSAlert addButtonWithTitle:\"Restart\"",
                  "NSAlert addButtonWithTitle:\"Snooze\"",
                  "NSAlert setShowsSuppressionButton:YES",
                  "NSAlert suppressionButton",
                  "NSAlert runModal",
              }));
}

TEST_F(Messages, RunThePanel) {
    const Class kind = [NSPanel class];
    recorder.watch<id>(kind, "init");
    recorder.watch<void, NSView*>(kind, "setContentView:");
    recorder.watch<void, id>(kind, "setDelegate:");
    recorder.watch<void, NSString*>(kind, "setTitle:");
    recorder.watch<void, NSUInteger>(kind, "setStyleMask:");
    recorder.watch<NSButton*, NSUInteger>(kind, "standardWindowButton:");
    recorder.watch<void, BOOL>(kind, "setPreventsApplicationTerminationWhenModal:");
    recorder.watch<void, BOOL>(kind, "setMovableByWindowBackground:");
    recorder.watch<void, NSInteger>(kind, "setTitleVisibility:");
    recorder.watch<void, BOOL>(kind, "setTitlebarAppearsTransparent:");
    recorder.watch<void>(kind, "center");
    recorder.watch<void, BOOL>([NSView class], "setHidden:");
    recorder.watch<NSInteger, NSWindow*>([NSApplication class], "runModalForWindow:", true);
    recorder.watch<void>([NSApplication class], "stopModal");
    recorder.watch<void, BOOL>([NSApplication class], "activateIgnoringOtherApps:");
    run({"-TimerInterval", "600"}, {{launched,
                                     [this] {
                                         recorder.clear();
                                         pick("Settings");
                                     }},
                                    {window, [] { press(buttonTitled("OK")); }}});

    NSPanel* const plain = [[[NSPanel alloc] init] autorelease];
    const std::string mask = std::to_string([plain styleMask] | NSTitledWindowMask | NSClosableWindowMask | 8192);
    const Lines lines = recorder.messagesTo({"NSApplication", "NSPanel", "HostingView"});
    EXPECT_EQ(first(20, lines), (Lines{
                                    "NSApplication activateIgnoringOtherApps:YES",
                                    "NSPanel init",
                                    "NSPanel setContentView:HostingView",
                                    "NSPanel setDelegate:PanelDelegate",
                                    "NSPanel setTitle:\"Marvelode Timer\"",
                                    "NSPanel setStyleMask:" + mask,
                                    "NSPanel standardWindowButton:0",
                                    "NSPanel standardWindowButton:1",
                                    "NSPanel standardWindowButton:2",
                                    "NSPanel setPreventsApplicationTerminationWhenModal:YES",
                                    "NSPanel setMovableByWindowBackground:YES",
                                    "HostingView setHidden:YES",
                                    "NSPanel setTitleVisibility:1",
                                    "NSPanel setTitlebarAppearsTransparent:YES",
                                    "NSPanel center",
                                    "HostingView setHidden:NO",
                                    "NSApplication runModalForWindow:NSPanel",
                                    "NSPanel center", // GNUstep's own, as the panel comes up
                                    "NSApplication stopModal",
                                    "HostingView setHidden:YES",
                                }));
}

TEST_F(Messages, ScheduleTheTimers) {
    recorder.watch<NSTimer*, NSTimeInterval, id, SEL, id, BOOL>(
        object_getClass([NSTimer class]), "scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:");
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Restart timer"); }}});
    const std::string action = " target:TimerTarget selector:timeExpired: userInfo:nil repeats:";
    Lines lines = recorder.lines();
    std::erase_if(lines, [](const std::string& line) { return line.find("TimerTarget") == std::string::npos; });
    EXPECT_EQ(lines, (Lines{
                         "NSTimer scheduledTimerWithTimeInterval:1" + action + "YES",
                         "NSTimer scheduledTimerWithTimeInterval:600" + action + "NO",
                         "NSTimer scheduledTimerWithTimeInterval:600" + action + "NO",
                     }));
}

TEST_F(Messages, ReadAndWriteTheSettings) {
    const Class kind = [NSUserDefaults class];
    recorder.watch<void, id, NSString*>(kind, "setObject:forKey:");
    recorder.watch<BOOL, NSString*>(kind, "boolForKey:");
    recorder.watch<NSInteger, NSString*>(kind, "integerForKey:");
    recorder.watch<NSString*, NSString*>(kind, "stringForKey:");
    run({"-TimerInterval", "600"},
        {{launched, [] { pick("Settings"); }}, {window, [] { press(buttonTitled("OK")); }}});
    const Lines& lines = recorder.lines();
    const auto has = [&](const std::string& line) {
        return std::any_of(lines.begin(), lines.end(),
                           [&](const std::string& each) { return each.substr(each.find(' ') + 1) == line; });
    };
    for (const char* each :
         {"stringForKey:\"Version\"", "setObject:\"1.0.0\" forKey:\"Version\"",
          "setObject:1 forKey:\"PopupAlerts\"", "setObject:1 forKey:\"AutoRestart\"",
          "setObject:1 forKey:\"ResartOnWake\"", "setObject:1 forKey:\"ShowCountdown\"", "boolForKey:\"Mute\"",
          "boolForKey:\"PopupAlerts\"", "integerForKey:\"TimerInterval\"", "stringForKey:\"AlertSound\"",
          "setObject:\"System\" forKey:\"AlertSound\"", "setObject:600 forKey:\"TimerInterval\""}) {
        EXPECT_TRUE(has(each)) << each;
    }
}

TEST_F(Messages, OpenAndPlayTheSounds) {
    recorder.watch<id, NSURL*, BOOL>([NSSound class], "initWithContentsOfURL:byReference:");
    store(@"Version", @"1");
    store(@"PopupAlerts", @(1));
    store(@"AlertSound", @"Whistle");
    run({"-TimerInterval", "1"}, {{alert, [] { press(alertButton(1)); }}});
    EXPECT_EQ(recorder.lines(), (Lines{
                                    "NSSound initWithContentsOfURL:\"Sonar.m4a\" byReference:YES",
                                    "NSSound initWithContentsOfURL:\"Bowl.m4a\" byReference:YES",
                                    "NSSound initWithContentsOfURL:\"Whistle.m4a\" byReference:YES",
                                }));
    EXPECT_EQ(playedSounds(), (Lines{"Whistle.m4a"}));
    EXPECT_EQ(beeps(), 0);
}

TEST_F(Messages, BeepForTheSystemsSound) {
    store(@"Version", @"1");
    store(@"PopupAlerts", @(0));
    run({"-TimerInterval", "1"}, {{[] { return beeps() > 0; }, [] {}}});
    EXPECT_EQ(beeps(), 1);
    EXPECT_TRUE(playedSounds().empty());
}

TEST_F(Messages, AskForTheWake) {
    recorder.watch<void, id, SEL, NSString*, id>(
        object_getClass([[NSWorkspace sharedWorkspace] notificationCenter]), "addObserver:selector:name:object:");
    run({"-TimerInterval", "600"}, {{launched, [] {}}});
    const Lines& lines = recorder.lines();
    const std::string expected = "addObserver:ApplicationDelegate selector:didWakeFromSleep: "
                                 "name:\"NSWorkspaceDidWakeNotification\" object:nil";
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(),
                            [&](const std::string& line) { return line.find(expected) != std::string::npos; }),
              1);
}

TEST_F(Messages, LogErrors) {
    session.run({}, 5s, [](int, const char* const*) {
        marvelode::Log::error("50% {done}");
        return 0;
    });
    ASSERT_EQ(logEntries().size(), 1U);
    EXPECT_EQ(logEntries().front().subsystem, "Marvelode Timer");
    EXPECT_EQ(logEntries().front().category, "MarvelodeLog");
    EXPECT_EQ(logEntries().front().type, OS_LOG_TYPE_ERROR);
    EXPECT_EQ(logEntries().front().format, "%{public}s");
    EXPECT_EQ(logEntries().front().argument, "50% {done}");
}

TEST_F(Messages, QuitWithoutASender) {
    recorder.watch<void, id>([NSApplication class], "terminate:");
    next({{launched, [] { pick("Quit"); }}}, 0);
    session.run({"-TimerInterval", "600"}, 5s, program);
    EXPECT_EQ(recorder.lines(), (Lines{"NSApplication terminate:nil"}));
}

TEST_F(Messages, DeclareTheDelegates) {
    const auto protocols = [](NSString* className) {
        Lines names;
        unsigned count = 0;
        Protocol* __unsafe_unretained* const list = class_copyProtocolList(NSClassFromString(className), &count);
        for (unsigned index = 0; index < count; ++index) {
            names.emplace_back(protocol_getName(list[index]));
        }
        std::free(list);
        std::sort(names.begin(), names.end());
        return names;
    };
    EXPECT_EQ(protocols(@"ApplicationDelegate"),
              (Lines{"NSApplicationDelegate", "UNUserNotificationCenterDelegate"}));
    EXPECT_EQ(protocols(@"PanelDelegate"), (Lines{"NSWindowDelegate"}));
    EXPECT_EQ(protocols(@"MenuTarget"), (Lines{"NSMenuDelegate"}));
    EXPECT_EQ(protocols(@"HostingView"), (Lines{"NSTextFieldDelegate"}));
}

} // namespace
