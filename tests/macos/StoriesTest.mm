// What a user of the Mac sees: the whole program on the real run loop, in real time, with a work interval of a
// second. The same behaviour is told in every detail by the stories on the simulated desktop.

#import "platform/macos/Retained.hpp"
#import "platform/macos/Strings.hpp"
#import "tests/macos/WholeProgram.hpp"

#include <objc/runtime.h>

#include <algorithm>
#include <optional>

namespace {

using namespace macos_tests;
using macos::fromCocoa;
using macos::Retained;
using macos::toCocoa;

Lines openedAddresses;

BOOL openURL(id, SEL, NSURL* url) {
    openedAddresses.push_back(fromCocoa([url absoluteString]));
    return YES;
}

class MacStories : public WholeProgram {
protected:
    void SetUp() override {
        store(@"Version", @"1.0.0"); // not the first run
        store(@"PopupAlerts", @(1));
        store(@"ShowCountdown", @(1));
        store(@"AutoRestart", @(0));
        method_setImplementation(class_getInstanceMethod([NSWorkspace class], @selector(openURL:)),
                                 reinterpret_cast<IMP>(openURL));
    }

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
                    auto* const bitmap = static_cast<NSBitmapImageRep*>(each);
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
    static Lines texts() {
        Lines found;
        for (NSTextField* each in viewsOfClass([NSTextField class])) {
            found.push_back(fromCocoa([each stringValue]));
        }
        return found;
    }

    static bool reads(const std::string& text) {
        const Lines all = texts();
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

    /// The on-off controls in the window in front, from top to bottom.
    static std::vector<NSButton*> switches() {
        std::vector<NSButton*> found;
        for (NSButton* each in viewsOfClass([NSButton class])) {
            if (![each isKindOfClass:[NSPopUpButton class]] && [[each cell] showsStateBy] != NSNoCellMask) {
                found.push_back(each);
            }
        }
        return found;
    }

    static NSRect frameOfText(const std::string& text) {
        for (NSTextField* each in viewsOfClass([NSTextField class])) {
            if ([[each stringValue] isEqualToString:toCocoa(text)]) {
                return [each frame];
            }
        }
        return NSZeroRect;
    }

    static NSRect frameOfPicture() { return [[viewsOfClass([NSImageView class]) lastObject] frame]; }

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

    /// Presses the keys of those letters one after the other.
    static void type(NSString* letters) {
        for (NSUInteger index = 0; index < [letters length]; ++index) {
            [frontWindow() sendEvent:key([letters substringWithRange:NSMakeRange(index, 1)], 0)];
        }
    }

    static void pressReturn() { [frontWindow() performKeyEquivalent:key(@"\r", 0)]; }

    /// What the open menu does with a key that is pressed together with Command.
    static void pressCommand(NSString* letter) {
        [statusMenu() update]; // as it does when it opens
        [statusMenu() performKeyEquivalent:key(letter, NSEventModifierFlagCommand)];
    }
};

TEST_F(MacStories, AReminderIsAnsweredWithRestart) {
    run({"-TimerInterval", "1"},
        {
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
}

TEST_F(MacStories, ASnoozeLetsTheTitleCountUp) {
    run({"-TimerInterval", "1"}, {
                                     {alert, [] { press(alertButton(1)); }},
                                     {passed(2500ms),
                                      [] {
                                          EXPECT_EQ(frontWindow(), nil);
                                          EXPECT_EQ(icon(), "MarvelodeGrey.png");
                                          EXPECT_TRUE(title() == "+2" || title() == "+3") << title();
                                          EXPECT_TRUE([titleColor() isEqual:[NSColor redColor]]);
                                      }},
                                 });
}

TEST_F(MacStories, ReturnChoosesRestart) {
    run({"-TimerInterval", "1"}, {
                                     {alert, pressReturn},
                                     {noWindow, [] { EXPECT_EQ(icon(), "Marvelode.png"); }},
                                 });
}

TEST_F(MacStories, PopupsAreSwitchedOffInThePopup) {
    store(@"AutoRestart", @(1));
    run({"-TimerInterval", "1"}, {
                                     {alert,
                                      [] {
                                          press(alertCheckBox());
                                          press(alertButton(1));
                                      }},
                                     {noWindow,
                                      [] {
                                          EXPECT_FALSE([stored(@"PopupAlerts") boolValue]);
                                          EXPECT_EQ(icon(), "Marvelode.png") << "the automatic restart takes over";
                                          EXPECT_EQ([menuEntry("Popup reminders") state], NSControlStateValueOn)
                                              << "as it was at launch";
                                      }},
                                     {passed(1500ms), [] { EXPECT_EQ(frontWindow(), nil); }},
                                 });
}

TEST_F(MacStories, AWakeDuringTheReminderStartsAFreshInterval) {
    run({"-TimerInterval", "1"}, {
                                     {alert, [] { store(@"TimerInterval", @(600)); }},
                                     {alert,
                                      [] {
                                          [[NSUserDefaults standardUserDefaults]
                                              removeVolatileDomainForName:NSArgumentDomain];
                                          wakeMachine();
                                          press(alertButton(1));
                                      }},
                                     {noWindow,
                                      [] {
                                          EXPECT_EQ(icon(), "Marvelode.png");
                                          EXPECT_EQ(title(), "10m");
                                      }},
                                 });
}

TEST_F(MacStories, TheMenuOffersWhatItShould) {
    run({}, {{launched, [] {
                  Lines entries;
                  for (NSMenuItem* each in [statusMenu() itemArray]) {
                      entries.push_back([each isSeparatorItem]
                                            ? "-"
                                            : fromCocoa([each title]) + "|" + fromCocoa([each keyEquivalent]));
                  }
                  EXPECT_EQ(entries, (Lines{"About Marvelode Timer|", "-", "Restart timer|r", "Mute|",
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
}

TEST_F(MacStories, TheMenuHasKeysForRestartingSettingsAndQuitting) {
    runUntilItEnds({}, {
                           {launched, [] { store(@"TimerInterval", @(1200)); }},
                           {launched, [] { pressCommand(@"r"); }},
                           {[] { return title() == "20m"; }, [] { pressCommand(@"s"); }},
                           {panel, [] { closeFrontWindow(); }},
                           {noWindow, [] { pressCommand(@"q"); }},
                       });
}

TEST_F(MacStories, NothingCanBePickedWhileTheReminderIsUp) {
    run({"-TimerInterval", "1"}, {{alert, [] {
                                       EXPECT_FALSE([menuEntry("Quit") isEnabled]);
                                       EXPECT_FALSE([menuEntry("Settings") isEnabled]);
                                       press(alertButton(0));
                                   }}});
}

TEST_F(MacStories, TheIntervalIsChangedInTheSettings) {
    run({}, {
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
}

TEST_F(MacStories, AnIntervalThatIsRefusedCanBeCorrected) {
    run({}, {
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
                     [minutes() sendAction:[minutes() action]
                                        to:[minutes() target]]; // what Return in the field does
                 }},
                {noWindow, [] { EXPECT_EQ([stored(@"TimerInterval") doubleValue], 420); }},
            });
}

TEST_F(MacStories, ASoundIsHeardWhenItIsPicked) {
    run({}, {
                {launched, [] { pick("Settings"); }},
                {panel,
                 [] {
                     EXPECT_EQ([[picker() itemTitles] count], 4U);
                     [picker() selectItemWithTitle:@"Bowl"];
                     [picker() sendAction:[picker() action] to:[picker() target]];
                     EXPECT_EQ(playedSounds(), (Lines{"Bowl.m4a"}));
                     press(buttonTitled("OK"));
                 }},
                {noWindow, [] { EXPECT_TRUE([stored(@"AlertSound") isEqual:@"Bowl"]); }},
            });
}

TEST_F(MacStories, TheSettingsShowAndChangeWhatIsStored) {
    store(@"PopupAlerts", @(0));
    store(@"AutoRestart", @(1));
    store(@"AlertSound", @"Whistle");
    run({}, {
                {launched, [] { pick("Settings"); }},
                {panel,
                 [] {
                     ASSERT_EQ(switches().size(), 2U);
                     EXPECT_EQ([switches()[0] state], NSControlStateValueOff) << "restart after sleep";
                     EXPECT_EQ([switches()[1] state], NSControlStateValueOn) << "auto restart timer";
                     EXPECT_TRUE([[picker() titleOfSelectedItem] isEqualToString:@"Whistle"]);
                     press(switches()[0]);
                     press(switches()[1]);
                     press(buttonTitled("OK"));
                 }},
                {noWindow,
                 [] {
                     EXPECT_TRUE([stored(@"ResartOnWake") boolValue]);
                     EXPECT_FALSE([stored(@"AutoRestart") boolValue]);
                     EXPECT_TRUE([stored(@"AlertSound") isEqual:@"Whistle"]);
                 }},
            });
}

TEST_F(MacStories, TheAutomaticRestartCannotBeSwitchedWhilePopupsAreOn) {
    run({}, {{launched, [] { pick("Settings"); }}, {panel, [] {
                                                        ASSERT_EQ(switches().size(), 2U);
                                                        EXPECT_TRUE([switches()[0] isEnabled]);
                                                        EXPECT_FALSE([switches()[1] isEnabled]);
                                                        press(buttonTitled("OK"));
                                                    }}});
}

TEST_F(MacStories, TheSettingsStandInTwoColumns) {
    constexpr double labelMargin = 2; // of the letters inside a label's frame
    run({}, {{launched, [] { pick("Settings"); }},
             {panel, [] {
                  for (const char* each :
                       {"Interval in minutes", "Restart after sleep", "Auto restart timer", "Reminder sound"}) {
                      EXPECT_EQ(NSMaxX(frameOfText(each)), 140 + labelMargin) << each;
                  }
                  constexpr double controls = 140 + 8 + 20; // the labels, the space between, the padding
                  EXPECT_EQ(NSMinX([minutes() frame]), controls);
                  EXPECT_EQ(NSWidth([minutes() frame]), 30);
                  for (NSButton* each : switches()) {
                      EXPECT_EQ(NSMinX([each frame]), controls);
                  }
                  EXPECT_EQ(NSMinX([picker() frame]), controls);
                  EXPECT_EQ(NSWidth([[frontWindow() contentView] frame]), controls + 100 + 10);

                  const NSRect button = [buttonTitled("OK") frame];
                  EXPECT_EQ(NSMinY(button), 10);
                  EXPECT_EQ(NSMinY([picker() frame]) - NSMaxY(button), 16 + 8);
                  EXPECT_EQ(NSMidX(button), (controls + 100) / 2);

                  const NSRect name = frameOfText("Marvelode Timer");
                  EXPECT_EQ(NSHeight(frameOfPicture()), 50);
                  EXPECT_EQ(NSMinX(name) + labelMargin - NSMaxX(frameOfPicture()), 12 + 8);
                  press(buttonTitled("OK"));
              }}});
}

TEST_F(MacStories, WhatWasTypedStaysInTheSettingsWhenTheyAreClosed) {
    run({}, {
                {launched, [] { pick("Settings"); }},
                {panel,
                 [] {
                     type(@"42"); // the field has the keyboard, with its text selected
                     EXPECT_TRUE([[[minutes() currentEditor] string] isEqualToString:@"42"]);
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
}

TEST_F(MacStories, ControlsThatOutliveTheirWindowDoNothing) {
    Retained<NSView> content;
    Retained<NSTextField> field;
    Retained<NSButton> button;
    run({}, {
                {launched, [] { pick("Settings"); }},
                {panel,
                 [&] {
                     content = Retained<NSView>{[[frontWindow() contentView] retain]};
                     field = Retained<NSTextField>{[minutes() retain]};
                     button = Retained<NSButton>{[buttonTitled("OK") retain]};
                     closeFrontWindow();
                 }},
                {noWindow,
                 [&] {
                     EXPECT_EQ([[content.get() subviews] count], 0U);
                     [field.get() setStringValue:@"99"];
                     [field.get() sendAction:[field.get() action] to:[field.get() target]];
                     [[NSNotificationCenter defaultCenter]
                         postNotificationName:NSControlTextDidEndEditingNotification
                                       object:field.get()];
                     press(button.get());
                     EXPECT_EQ(stored(@"TimerInterval"), nil);
                     pick("Settings");
                 }},
                {panel,
                 [] {
                     EXPECT_TRUE([[minutes() stringValue] isEqualToString:@"10"]);
                     closeFrontWindow();
                 }},
            });
}

TEST_F(MacStories, TheAboutBoxShowsTheBuildAndOpensLinks) {
    run({}, {
                {launched, [] { pick("About Marvelode Timer"); }},
                {panel,
                 [] {
                     EXPECT_TRUE(reads("Marvelode Timer"));
                     EXPECT_TRUE(reads("Version: " MARVELODE_VERSION));
                     EXPECT_EQ(NSMinY([buttonTitled("OK") frame]), 16);
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
}

TEST_F(MacStories, InTestModeThereIsNoPicture) {
    run({"-test"}, {
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
}

} // namespace
