// The messages that AppKit is sent, to the letter: a misspelt selector, a forgotten one, or one out of order fails
// here and not on a user's Mac. The program runs as it is, on top of GNUstep and the shims.

#import "tests/macos/Recorder.hpp"
#import "tests/macos/WholeProgram.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace {

using namespace macos_tests;

/// A style that no panel here begins with, to tell what is added from what is there.
NSUInteger styleOfAPlainPanel(id, SEL) { return 1; }

class Messages : public WholeProgram {
protected:
    Recorder& recorder = Recorder::shared();

    void SetUp() override { [NSApplication sharedApplication]; } // which much of AppKit cannot be used without
    void begin() override { recorder.start(); }

    /// The lines that speak of any of `subjects`, in order.
    Lines linesAbout(const Lines& subjects) const {
        Lines found;
        for (const std::string& line : recorder.lines()) {
            if (std::any_of(subjects.begin(), subjects.end(),
                            [&](const std::string& each) { return line.find(each) != std::string::npos; })) {
                found.push_back(line);
            }
        }
        return found;
    }

    static Lines first(std::size_t count, Lines lines) {
        lines.resize(std::min(count, lines.size()));
        return lines;
    }

    static std::string scheduled(const std::string& interval, const std::string& repeats) {
        return "NSTimer scheduledTimerWithTimeInterval:" + interval +
               " target:TimerTarget selector:timeExpired: userInfo:nil repeats:" + repeats;
    }

    void watchAlerts() {
        const Class kind = [NSAlert class];
        recorder.watch<void, NSAlertStyle>(kind, "setAlertStyle:");
        recorder.watch<void, NSImage*>(kind, "setIcon:");
        recorder.watch<void, NSString*>(kind, "setMessageText:");
        recorder.watch<void, NSString*>(kind, "setInformativeText:");
        recorder.watch<NSButton*, NSString*>(kind, "addButtonWithTitle:");
        recorder.watch<void, BOOL>(kind, "setShowsSuppressionButton:");
        recorder.watch<NSButton*>(kind, "suppressionButton");
        recorder.watch<NSInteger>(kind, "runModal", true);
    }

    void watchSettings() {
        const Class kind = [NSUserDefaults class];
        recorder.watch<void, id, NSString*>(kind, "setObject:forKey:");
        recorder.watch<BOOL, NSString*>(kind, "boolForKey:");
        recorder.watch<NSInteger, NSString*>(kind, "integerForKey:");
        recorder.watch<NSString*, NSString*>(kind, "stringForKey:");
    }

    void watchTimers() {
        recorder.watch<NSTimer*, NSTimeInterval, id, SEL, id, BOOL>(
            object_getClass([NSTimer class]), "scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:");
    }
};

TEST_F(Messages, LaunchInOrderAndTakeLeave) {
    recorder.watch<NSURL*, NSString*, NSString*>([NSBundle class], "URLForResource:withExtension:");
    recorder.watch<id, NSURL*>(object_getClass([NSData class]), "dataWithContentsOfURL:");
    recorder.watch<id, NSURL*, BOOL>([NSSound class], "initWithContentsOfURL:byReference:");
    recorder.watch<void, id>([NSApplication class], "setDelegate:");
    recorder.watch<NSStatusItem*, CGFloat>([NSStatusBar class], "statusItemWithLength:");
    const Class center = object_getClass([[NSWorkspace sharedWorkspace] notificationCenter]);
    recorder.watch<void, id, SEL, NSString*, id>(center, "addObserver:selector:name:object:");
    recorder.watch<void, id>(center, "removeObserver:");
    watchTimers();
    run({"-TimerInterval", "600"}, {{launched, [] {}}});

    Lines expected{R"(NSBundle URLForResource:"BuildInfo" withExtension:"txt")",
                   R"(NSData dataWithContentsOfURL:"BuildInfo.txt")"};
    for (const marvelode::Cfg::Sound each : marvelode::Cfg::allSounds) {
        if (each == marvelode::Cfg::Sound::System) {
            continue;
        }
        const std::string sound{marvelode::Cfg::rawValue(each)};
        expected.push_back(R"(NSBundle URLForResource:")" + sound + R"(" withExtension:"m4a")");
        expected.push_back(R"(NSSound initWithContentsOfURL:")" + sound + R"(.m4a" byReference:YES)");
    }
    for (const std::string& each :
         {std::string{"NSApplication setDelegate:ApplicationDelegate"},
          std::string{"NSStatusBar statusItemWithLength:50"}, scheduled("1", "YES"),
          std::string{"NSNotificationCenter addObserver:ApplicationDelegate selector:"
                      "didWakeFromSleep: name:\"NSWorkspaceDidWakeNotification\" object:nil"},
          scheduled("600", "NO")}) {
        expected.push_back(each);
    }
    EXPECT_EQ(first(expected.size(), linesAbout({"BuildInfo", ".m4a", "\"m4a\"", "NSStatusBar", "TimerTarget",
                                                 "ApplicationDelegate"})),
              expected);
    EXPECT_EQ(recorder.lines().back(), "NSNotificationCenter removeObserver:ApplicationDelegate");
}

TEST_F(Messages, SetTheStatusItemUp) {
    recorder.watch<NSStatusItem*, CGFloat>([NSStatusBar class], "statusItemWithLength:");
    // the classes of what the bar gives, which may be secret ones
    NSStatusItem* const plain = [[NSStatusBar systemStatusBar] statusItemWithLength:50];
    const Class item = object_getClass(plain);
    const Class button = object_getClass([plain button]);
    [[NSStatusBar systemStatusBar] removeStatusItem:plain];
    recorder.watch<void, NSMenu*>(item, "setMenu:");
    recorder.watch<void, NSUInteger>(button, "setImagePosition:");
    recorder.watch<void, id>(button, "setTarget:");
    recorder.watch<NSInteger, NSEventMask>(button, "sendActionOn:");
    recorder.watch<void, NSImage*>(button, "setImage:");
    recorder.watch<void, NSAttributedString*>(button, "setAttributedTitle:");
    recorder.watch<void, NSSize>([NSImage class], "setSize:");
    run({"-TimerInterval", "600"}, {{launched, [] {}}});

    const Lines expected{
        "NSStatusBar statusItemWithLength:50",
        "NSStatusBarButton setImagePosition:" + std::to_string(NSImageLeft),
        "NSStatusBarButton setTarget:StatusButtonTarget",
        "NSStatusBarButton sendActionOn:20",
        "NSStatusItem setMenu:NSMenu",
        "NSStatusBarButton setImage:NSImage",
        "NSImage setSize:16x26",
        "NSStatusBarButton setImage:NSImage", // the first state change
        "NSImage setSize:16x26",
        "NSStatusBarButton setAttributedTitle:\"10m\"",
    };
    EXPECT_EQ(first(expected.size(), recorder.lines()), expected);
}

TEST_F(Messages, ColourTheTitle) {
    NSFont* const font = [NSFont monospacedSystemFontOfSize:12 weight:NSFontWeightRegular];
    NSColor* const red = [NSColor redColor];
    recorder.watch<NSFont*, CGFloat, NSFontWeight>(object_getClass([NSFont class]),
                                                   "monospacedSystemFontOfSize:weight:");
    recorder.watch<NSColor*>(object_getClass([NSColor class]), "redColor");
    const auto attribute = [](NSString* name) {
        return [[statusButton() attributedTitle] attribute:name atIndex:0 effectiveRange:nullptr];
    };
    run({"-TimerInterval", "1"}, {{launched, [&] { EXPECT_TRUE([attribute(NSFontAttributeName) isEqual:font]); }},
                                  {alert, [&] {
                                       EXPECT_TRUE([attribute(NSForegroundColorAttributeName) isEqual:red]);
                                       press(alertButton(0));
                                   }}});
    EXPECT_FALSE(linesAbout({"NSColor redColor"}).empty());
    const Lines fonts = linesAbout({"monospaced"});
    EXPECT_FALSE(fonts.empty());
    EXPECT_EQ(fonts, Lines(fonts.size(), "NSFont monospacedSystemFontOfSize:12 weight:0"));
}

TEST_F(Messages, FillTheMenu) {
    recorder.watch<void, id>([NSMenu class], "setDelegate:");
    recorder.watch<void, BOOL>([NSMenu class], "setAutoenablesItems:");
    recorder.watch<void, NSMenuItem*>([NSMenu class], "addItem:");
    recorder.watch<id>(object_getClass([NSMenuItem class]), "separatorItem");
    recorder.watch<id, NSString*, SEL, NSString*>([NSMenuItem class], "initWithTitle:action:keyEquivalent:");
    recorder.watch<void, id>([NSMenuItem class], "setTarget:");
    recorder.watch<void, BOOL>([NSMenuItem class], "setEnabled:");
    recorder.watch<void, NSInteger>([NSMenuItem class], "setState:");
    store(@"Version", @"1");
    store(@"PopupAlerts", @(1));
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Mute"); }}, {launched, [] { pick("Mute"); }}});

    Lines expected{"NSMenu setDelegate:MenuTarget"}; // automatic enabling is left on
    const auto entry = [&](const std::string& title, const std::string& key, const Lines& setUp) {
        expected.push_back("NSMenuItem initWithTitle:\"" + title + "\" action:performItem: keyEquivalent:\"" + key +
                           "\"");
        expected.emplace_back("NSMenuItem setTarget:MenuTarget");
        expected.insert(expected.end(), setUp.begin(), setUp.end());
        expected.emplace_back("NSMenu addItem:NSMenuItem");
    };
    const auto separator = [&] {
        expected.insert(expected.end(), {"NSMenuItem separatorItem", "NSMenu addItem:NSMenuItem"});
    };
    entry("About Marvelode Timer", "", {"NSMenuItem setEnabled:NO"});
    separator();
    entry("Restart timer", "r", {"NSMenuItem setEnabled:NO"});
    entry("Mute", "", {"NSMenuItem setState:0"});
    entry("Popup reminders", "", {"NSMenuItem setState:1"});
    entry("Settings", "s", {"NSMenuItem setEnabled:YES"});
    separator();
    entry("Quit", "q", {});
    const std::size_t setUp = expected.size();
    expected.insert(expected.end(), {"NSMenuItem setState:1", "NSMenuItem setState:0"}); // muted and unmuted

    Lines relevant;
    for (const std::string& line : recorder.lines()) { // AppKit itself enables entries before each pick
        if (relevant.size() < setUp || line.rfind("NSMenuItem setState:", 0) == 0) {
            relevant.push_back(line);
        }
    }
    EXPECT_EQ(relevant, expected);
}

TEST_F(Messages, RunTheReminder) {
    watchAlerts();
    recorder.watch<void, NSInteger>([NSButton class], "setState:");
    recorder.watch<void, NSString*>([NSButton class], "setTitle:");
    recorder.watch<BOOL, NSApplicationActivationOptions>([NSRunningApplication class], "activateWithOptions:");
    run({"-TimerInterval", "1"}, {{alert, [] { press(alertButton(0)); }}});

    EXPECT_EQ(first(12, recorder.messagesTo({"NSRunningApplication", "NSAlert", "NSButton"})),
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
                  "NSButton setState:0",
                  "NSButton setTitle:\"Disable popup notifications\"",
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
    method_setImplementation(class_getInstanceMethod(kind, @selector(styleMask)),
                             reinterpret_cast<IMP>(styleOfAPlainPanel));
    recorder.watch<void, BOOL>(kind, "setPreventsApplicationTerminationWhenModal:");
    recorder.watch<void, BOOL>(kind, "setMovableByWindowBackground:");
    recorder.watch<void, NSInteger>(kind, "setTitleVisibility:");
    recorder.watch<void, BOOL>(kind, "setTitlebarAppearsTransparent:");
    recorder.watch<void, NSSize>(kind, "setContentSize:");
    recorder.watch<void>(kind, "center");
    recorder.watch<BOOL, NSResponder*>(kind, "makeFirstResponder:");
    recorder.watch<void>(kind, "close", true);
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

    Lines lines;
    for (std::string line : recorder.messagesTo({"NSApplication", "NSPanel", "NSButton", "HostingView"})) {
        // how large the content is, is not the same everywhere; AppKit may centre the panel as it comes up
        line = line.substr(0, line.rfind("NSPanel setContentSize:", 0) == 0 ? line.find(':') : line.size());
        if (line != "NSPanel center" || lines.back() != "NSApplication runModalForWindow:NSPanel") {
            lines.push_back(line);
        }
    }
    EXPECT_EQ(lines, (Lines{
                         "NSApplication activateIgnoringOtherApps:YES",
                         "NSPanel init",
                         "NSPanel setContentView:HostingView",
                         "NSPanel setDelegate:PanelDelegate",
                         "NSPanel setTitle:\"Marvelode Timer\"",
                         "NSPanel setStyleMask:8193", // one bit added
                         "NSPanel standardWindowButton:0",
                         "NSButton setHidden:YES",
                         "NSPanel standardWindowButton:1",
                         "NSButton setHidden:YES",
                         "NSPanel standardWindowButton:2",
                         "NSButton setHidden:YES",
                         "NSPanel setPreventsApplicationTerminationWhenModal:YES",
                         "NSPanel setMovableByWindowBackground:YES",
                         "HostingView setHidden:YES",
                         "NSPanel setTitleVisibility:1",
                         "NSPanel setTitlebarAppearsTransparent:YES",
                         "NSPanel setContentSize",
                         "NSPanel center",
                         "HostingView setHidden:NO",
                         "NSPanel makeFirstResponder:NSTextField",
                         "NSApplication runModalForWindow:NSPanel",
                         "NSPanel close", // by the form
                         "NSApplication stopModal",
                         "NSPanel makeFirstResponder:nil", // so that what was typed is not lost
                         "HostingView setHidden:YES",
                         "NSPanel setDelegate:nil", // and gone
                         "NSPanel close",
                     }));
}

TEST_F(Messages, ScheduleTheTimers) {
    watchTimers();
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Restart timer"); }}});
    EXPECT_EQ(linesAbout({"TimerTarget"}),
              (Lines{scheduled("1", "YES"), scheduled("600", "NO"), scheduled("600", "NO")}));
}

TEST_F(Messages, ReadAndWriteTheSettings) {
    watchSettings();
    run({"-TimerInterval", "600"}, {{launched, [] {}}});
    const Lines& lines = recorder.lines();
    for (const char* each :
         {R"(NSUserDefaults stringForKey:"Version")",
          R"(NSUserDefaults setObject:")" MARVELODE_VERSION R"(" forKey:"Version")",
          R"(NSUserDefaults setObject:boolean 1 forKey:"PopupAlerts")",
          R"(NSUserDefaults setObject:boolean 1 forKey:"AutoRestart")",
          R"(NSUserDefaults setObject:boolean 1 forKey:"ResartOnWake")",
          R"(NSUserDefaults setObject:boolean 1 forKey:"ShowCountdown")", R"(NSUserDefaults boolForKey:"Mute")",
          R"(NSUserDefaults boolForKey:"PopupAlerts")", R"(NSUserDefaults integerForKey:"TimerInterval")",
          R"(NSUserDefaults stringForKey:"AlertSound")"}) {
        EXPECT_NE(std::find(lines.begin(), lines.end(), each), lines.end()) << each;
    }
}

TEST_F(Messages, SaveTheFormInOrder) {
    watchSettings();
    store(@"Version", @"1");
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Settings"); }}, {window, [this] {
                                                                               recorder.clear();
                                                                               press(buttonTitled("OK"));
                                                                           }}});
    EXPECT_EQ(linesAbout({"setObject:"}), (Lines{
                                              R"(NSUserDefaults setObject:"System" forKey:"AlertSound")",
                                              R"(NSUserDefaults setObject:boolean 0 forKey:"ResartOnWake")",
                                              R"(NSUserDefaults setObject:boolean 0 forKey:"AutoRestart")",
                                              R"(NSUserDefaults setObject:double 600 forKey:"TimerInterval")",
                                          }));
}

TEST_F(Messages, RefuseAnInterval) {
    watchAlerts();
    store(@"Version", @"1");
    run({"-TimerInterval", "30"}, {{launched, [] { pick("Settings"); }}, // no whole minute
                                   {window, [] { press(buttonTitled("OK")); }},
                                   {alert, [] { press(alertButton(0)); }},
                                   {window, [] { closeFrontWindow(); }}});
    EXPECT_EQ(first(5, recorder.messagesTo({"NSAlert"})), (Lines{
                                                              "NSAlert setAlertStyle:0",
                                                              "NSAlert setIcon:nil",
                                                              "NSAlert setMessageText:\"Oops\"",
                                                              "NSAlert setInformativeText:\"Invalid interval\"",
                                                              "NSAlert runModal",
                                                          }));
}

TEST_F(Messages, PlayTheSoundThatWasChosen) {
    recorder.watch<id, NSURL*, BOOL>([NSSound class], "initWithContentsOfURL:byReference:");
    store(@"Version", @"1");
    store(@"PopupAlerts", @(1));
    store(@"AlertSound", @"Whistle");
    run({"-TimerInterval", "1"}, {{alert, [] { press(alertButton(1)); }}});
    EXPECT_EQ(recorder.lines().size(), 3U) << "each file is opened once";
    EXPECT_EQ(playedSounds(), (Lines{"Whistle.m4a"}));
}

TEST_F(Messages, QuitWithoutASender) {
    recorder.watch<void, id>([NSApplication class], "terminate:");
    run({"-TimerInterval", "600"}, {});
    EXPECT_EQ(recorder.lines(), (Lines{"NSApplication terminate:nil"}));
}

TEST_F(Messages, DeclareTheDelegates) {
    const auto protocols = [](NSString* className) {
        Lines names;
        unsigned count = 0;
        Protocol* __unsafe_unretained* const list = class_copyProtocolList(NSClassFromString(className), &count);
        const std::unique_ptr<void, decltype(&std::free)> owner{list, &std::free};
        for (unsigned index = 0; index < count; ++index) {
            names.emplace_back(protocol_getName(list[index]));
        }
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
