// What a user of the Mac sees: the whole program on the real run loop, in real time, with a work interval of a
// second. The same behaviour is told in every detail by the stories on the simulated desktop.

#include "app/App.hpp"
#include "app/main.hpp"
#include "platform/NSApplication.hpp"
#import "platform/macos/Strings.hpp"
#import "tests/macos/Session.hpp"
#import "tests/macos/shims/Heard.hpp"

#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <algorithm>

namespace {

using namespace macos_tests;
using namespace std::chrono_literals;
using cocoa::fromCocoa;
using cocoa::toCocoa;
using Texts = std::vector<std::string>;

Texts openedAddresses;

BOOL openURL(id, SEL, NSURL* url) {
    openedAddresses.push_back(fromCocoa([url absoluteString]));
    return YES;
}

class MacStories : public testing::Test {
protected:
    void SetUp() override {
        store(@"Version", @"1.0.0"); // not the first run
        store(@"PopupAlerts", @(1));
        store(@"ShowCountdown", @(1));
        store(@"AutoRestart", @(0));
        method_setImplementation(class_getInstanceMethod([NSWorkspace class], @selector(openURL:)),
                                 reinterpret_cast<IMP>(openURL));
    }

    static void store(NSString* key, id value) {
        [[NSUserDefaults standardUserDefaults] setObject:value forKey:key];
    }

    static id stored(NSString* key) { return [[NSUserDefaults standardUserDefaults] objectForKey:key]; }

    /// Runs the program; everything that the user does must be arranged before.
    void run(const Texts& arguments = {}) {
        const int status = session.run(arguments, 20s, [](int argc, const char* const* argv) {
            const int result = marvelode::marvelodeTimer(argc, argv);
            platform::NSApplication::shared().delegate.reset();
            marvelode::app.reset();
            return result;
        });
        EXPECT_EQ(status, 0);
        EXPECT_FALSE(session.ranOut()) << "the user could not do everything";
        EXPECT_TRUE(isDone);
    }

    /// The user does `deeds` one after the other, each as soon as what the one before waits for has happened, and
    /// then quits.
    struct Deed {
        std::function<bool()> when;
        std::function<void()> what;
    };
    void user(std::vector<Deed> deeds) {
        deeds.push_back({noWindow, [this] {
                             isDone = true;
                             pick("Quit");
                         }});
        next(std::move(deeds), 0);
    }

    static bool launched() { return marvelode::app && marvelode::app->state != marvelode::App::State::Init; }
    static bool noWindow() { return launched() && frontWindow() == nil; }
    static bool window() { return [frontWindow() isVisible]; }
    static bool alert() { return window() && alertButton(0) != nil; }
    static bool panel() { return window() && alertButton(0) == nil; }
    static std::function<bool()> passed(milliseconds span) {
        return [span, begin = std::optional<std::chrono::steady_clock::time_point>{}]() mutable {
            const auto now = std::chrono::steady_clock::now();
            begin = begin.value_or(now);
            return now - *begin >= span;
        };
    }

    static std::string title() { return fromCocoa([[statusButton() attributedTitle] string]); }
    static NSColor* titleColor() {
        return [[statusButton() attributedTitle] attribute:NSForegroundColorAttributeName
                                                   atIndex:0
                                            effectiveRange:nullptr];
    }

    /// The file name of the resource that has the picture on the status item.
    static std::string icon() {
        const auto pixels = [](NSImage* image) {
            for (NSImageRep* each in [image representations]) {
                if ([each isKindOfClass:[NSBitmapImageRep class]]) {
                    NSBitmapImageRep* const bitmap = static_cast<NSBitmapImageRep*>(each);
                    return std::string{reinterpret_cast<const char*>([bitmap bitmapData]),
                                       static_cast<std::size_t>([bitmap bytesPerPlane])};
                }
            }
            return std::string{};
        };
        NSImage* const shown = [statusButton() image];
        for (const char* each : {"Marvelode.png", "MarvelodeGrey.png"}) {
            if (shown && pixels(shown) == pixels([NSImage imageNamed:toCocoa(each)])) {
                return each;
            }
        }
        return "";
    }

    /// The texts in the window in front, in the order in which they were put there.
    static Texts texts() {
        Texts found;
        for (NSTextField* each in viewsOfClass([NSTextField class])) {
            found.push_back(fromCocoa([each stringValue]));
        }
        return found;
    }

    static bool reads(const std::string& text) {
        const Texts all = texts();
        return std::find(all.begin(), all.end(), text) != all.end();
    }

    static NSTextField* minutes() {
        for (NSTextField* each in viewsOfClass([NSTextField class])) {
            if ([each isEditable]) {
                return each;
            }
        }
        return nil;
    }

    static NSPopUpButton* picker() { return [viewsOfClass([NSPopUpButton class]) lastObject]; }

    static NSEvent* key(NSString* character, NSEventModifierFlags modifiers) {
        return [NSEvent keyEventWithType:NSEventTypeKeyDown
                                location:NSZeroPoint
                           modifierFlags:modifiers
                               timestamp:0
                            windowNumber:[frontWindow() windowNumber]
                                 context:nil
                              characters:character
             charactersIgnoringModifiers:character
                               isARepeat:NO
                                 keyCode:0];
    }

    static void pressReturn() { [frontWindow() performKeyEquivalent:key(@"\r", 0)]; }

    /// What the open menu does with a key that is pressed together with Command.
    static void pressCommand(NSString* letter) {
        [statusMenu() update]; // as it does when it opens
        [statusMenu() performKeyEquivalent:key(letter, NSEventModifierFlagCommand)];
    }

    Session session;
    bool isDone = false;

private:
    void next(std::vector<Deed> deeds, std::size_t index) {
        if (index < deeds.size()) {
            const auto when = deeds[index].when;
            session.when(when, [this, deeds = std::move(deeds), index] {
                next(deeds, index + 1); // first, because a deed may open a window and not return before it closes
                deeds[index].what();
            });
        }
    }
};

TEST_F(MacStories, AReminderIsAnsweredWithRestart) {
    user({
        {launched,
         [] {
             EXPECT_EQ(icon(), "Marvelode.png");
             EXPECT_TRUE(NSEqualSizes([[statusButton() image] size], NSMakeSize(16, 26)));
             EXPECT_TRUE(title() == "1" || title() == "0") << title();
         }},
        {alert,
         [] {
             EXPECT_TRUE(reads("Marvelode Timer"));
             EXPECT_TRUE(reads("Look around. Take a breath. Stretch."));
             EXPECT_TRUE([[alertButton(0) title] isEqualToString:@"Restart"]);
             EXPECT_TRUE([[alertButton(1) title] isEqualToString:@"Snooze"]);
             EXPECT_TRUE([[alertCheckBox() title] isEqualToString:@"Disable popup notifications"]);
             EXPECT_EQ([alertCheckBox() state], NSControlStateValueOff);
             EXPECT_EQ(icon(), "MarvelodeGrey.png");
             EXPECT_EQ(title().front(), '+');
             EXPECT_TRUE([titleColor() isEqual:[NSColor redColor]]);
             press(alertButton(0));
         }},
        {noWindow,
         [] {
             EXPECT_EQ(icon(), "Marvelode.png");
             EXPECT_NE(title().front(), '+');
         }},
    });
    run({"-TimerInterval", "1"});
}

TEST_F(MacStories, ASnoozeLetsTheTitleCountUp) {
    user({
        {alert, [] { press(alertButton(1)); }},
        {passed(2500ms),
         [] {
             EXPECT_EQ(frontWindow(), nil);
             EXPECT_EQ(icon(), "MarvelodeGrey.png");
             EXPECT_TRUE(title() == "+2" || title() == "+3") << title();
             EXPECT_TRUE([titleColor() isEqual:[NSColor redColor]]);
         }},
    });
    run({"-TimerInterval", "1"});
}

TEST_F(MacStories, ReturnChoosesRestart) {
    user({
        {alert, pressReturn},
        {noWindow, [] { EXPECT_EQ(icon(), "Marvelode.png"); }},
    });
    run({"-TimerInterval", "1"});
}

TEST_F(MacStories, PopupsAreSwitchedOffInThePopup) {
    store(@"AutoRestart", @(1));
    user({
        {alert,
         [] {
             press(alertCheckBox());
             press(alertButton(1));
         }},
        {noWindow,
         [] {
             EXPECT_FALSE([stored(@"PopupAlerts") boolValue]);
             EXPECT_EQ(icon(), "Marvelode.png") << "the automatic restart takes over";
             EXPECT_EQ([menuEntry("Popup reminders") state], NSControlStateValueOn) << "as it was at launch";
         }},
        {passed(1500ms), [] { EXPECT_EQ(frontWindow(), nil); }},
    });
    run({"-TimerInterval", "1"});
}

TEST_F(MacStories, AWakeDuringTheReminderStartsAFreshInterval) {
    user({
        {alert, [] { store(@"TimerInterval", @(600)); }},
        {alert,
         [] {
             [[NSUserDefaults standardUserDefaults] removeVolatileDomainForName:NSArgumentDomain];
             wakeMachine();
             press(alertButton(1));
         }},
        {noWindow,
         [] {
             EXPECT_EQ(icon(), "Marvelode.png");
             EXPECT_EQ(title(), "10m");
         }},
    });
    run({"-TimerInterval", "1"});
}

TEST_F(MacStories, TheMenuOffersWhatItShould) {
    user({{launched, [] {
               Texts entries;
               for (NSMenuItem* each in [statusMenu() itemArray]) {
                   entries.push_back([each isSeparatorItem]
                                         ? "-"
                                         : fromCocoa([each title]) + "|" + fromCocoa([each keyEquivalent]));
               }
               EXPECT_EQ(entries, (Texts{"About Marvelode Timer|", "-", "Restart timer|r", "Mute|",
                                         "Popup reminders|", "Settings|s", "-", "Quit|q"}));
               for (const char* each : {"About Marvelode Timer", "Restart timer", "Mute", "Settings", "Quit"}) {
                   EXPECT_TRUE([menuEntry(each) isEnabled]) << each;
               }
               EXPECT_EQ([menuEntry("Mute") state], NSControlStateValueOff);
               EXPECT_EQ([menuEntry("Popup reminders") state], NSControlStateValueOn);
               pick("Mute");
               EXPECT_EQ([menuEntry("Mute") state], NSControlStateValueOn);
               EXPECT_TRUE([stored(@"Mute") boolValue]);
               pick("Mute");
               EXPECT_EQ([menuEntry("Mute") state], NSControlStateValueOff);
               pick("Popup reminders");
               EXPECT_EQ([menuEntry("Popup reminders") state], NSControlStateValueOff);
           }}});
    run();
}

TEST_F(MacStories, TheMenuHasKeysForRestartingSettingsAndQuitting) {
    user({
        {launched, [] { store(@"TimerInterval", @(1200)); }},
        {launched, [] { pressCommand(@"r"); }},
        {[] { return title() == "20m"; }, [] { pressCommand(@"s"); }},
        {panel, [] { closeFrontWindow(); }},
        {noWindow,
         [this] {
             isDone = true;
             pressCommand(@"q");
         }},
    });
    run();
}

TEST_F(MacStories, NothingCanBePickedWhileTheReminderIsUp) {
    user({{alert, [] {
               EXPECT_FALSE([menuEntry("Quit") isEnabled]);
               EXPECT_FALSE([menuEntry("Settings") isEnabled]);
               press(alertButton(0));
           }}});
    run({"-TimerInterval", "1"});
}

TEST_F(MacStories, TheIntervalIsChangedInTheSettings) {
    user({
        {launched, [] { pick("Settings"); }},
        {panel,
         [] {
             EXPECT_TRUE(reads("Interval in minutes"));
             EXPECT_TRUE([[minutes() stringValue] isEqualToString:@"10"]);
             EXPECT_TRUE([[[minutes() cell] placeholderString] isEqualToString:@"600"]);
             [minutes() setStringValue:@"25"];
             press(buttonTitled("OK"));
         }},
        {noWindow,
         [] {
             EXPECT_EQ([stored(@"TimerInterval") doubleValue], 1500);
             EXPECT_EQ(title(), "25m");
         }},
    });
    run();
}

TEST_F(MacStories, AnIntervalThatIsRefusedCanBeCorrected) {
    user({
        {launched, [] { pick("Settings"); }},
        {panel,
         [] {
             [minutes() setStringValue:@"0"];
             pressReturn();
         }},
        {alert,
         [] {
             EXPECT_TRUE(reads("Oops"));
             EXPECT_TRUE(reads("Invalid interval"));
             press(alertButton(0));
         }},
        {panel,
         [] {
             EXPECT_TRUE([[minutes() stringValue] isEqualToString:@"0"]);
             [minutes() setStringValue:@"7"];
             [minutes() sendAction:[minutes() action] to:[minutes() target]]; // what Return in the field does
         }},
        {noWindow, [] { EXPECT_EQ([stored(@"TimerInterval") doubleValue], 420); }},
    });
    run();
}

TEST_F(MacStories, ASoundIsHeardWhenItIsPicked) {
    user({
        {launched, [] { pick("Settings"); }},
        {panel,
         [] {
             EXPECT_EQ([[picker() itemTitles] count], 4U);
             [picker() selectItemWithTitle:@"Bowl"];
             [picker() sendAction:[picker() action] to:[picker() target]];
             EXPECT_EQ(playedSounds(), (Texts{"Bowl.m4a"}));
             press(buttonTitled("OK"));
         }},
        {noWindow, [] { EXPECT_TRUE([stored(@"AlertSound") isEqual:@"Bowl"]); }},
    });
    run();
}

TEST_F(MacStories, WhatWasTypedStaysInTheSettingsWhenTheyAreClosed) {
    user({
        {launched, [] { pick("Settings"); }},
        {panel,
         [] {
             [minutes() setStringValue:@"42"];
             [[NSNotificationCenter defaultCenter] postNotificationName:NSControlTextDidEndEditingNotification
                                                                 object:minutes()];
             closeFrontWindow();
         }},
        {noWindow, [] { pick("Settings"); }},
        {panel,
         [] {
             EXPECT_TRUE([[minutes() stringValue] isEqualToString:@"42"]);
             closeFrontWindow();
         }},
        {noWindow, [] { EXPECT_EQ(stored(@"TimerInterval"), nil); }},
    });
    run();
}

TEST_F(MacStories, TheAboutBoxShowsTheBuildAndOpensLinks) {
    user({
        {launched, [] { pick("About Marvelode Timer"); }},
        {panel,
         [] {
             EXPECT_TRUE(reads("Marvelode Timer"));
             EXPECT_TRUE(reads("Version: 1.0.0"));
             NSView* const license = buttonTitled("License");
             NSView* afterTabs = [license nextKeyView];
             for (int tabs = 1; tabs < 5 && afterTabs != license; ++tabs) {
                 afterTabs = [afterTabs nextKeyView];
             }
             EXPECT_EQ(afterTabs, license);
             press(buttonTitled("License"));
             press(buttonTitled("Support"));
             EXPECT_EQ(openedAddresses.size(), 2U);
             EXPECT_EQ(openedAddresses.front().rfind("https://", 0), 0U);
             pressReturn();
         }},
    });
    run();
}

TEST_F(MacStories, InTestModeThereIsNoPicture) {
    user({
        {launched,
         [] {
             EXPECT_EQ([statusButton() image], nil);
             pick("About Marvelode Timer");
         }},
        {panel,
         [] {
             EXPECT_EQ([viewsOfClass([NSImageView class]) count], 0U);
             EXPECT_TRUE(reads("Version: test"));
             pressReturn();
         }},
    });
    run({"-test"});
}

} // namespace
