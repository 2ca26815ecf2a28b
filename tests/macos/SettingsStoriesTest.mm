#import "platform/macos/Retained.hpp"
#import "tests/macos/MacStories.hpp"

namespace {

using namespace macos_tests;
using macos::Retained;

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
                      EXPECT_EQ(NSMinX([each alignmentRectForFrame:[each frame]]), controls);
                  }
                  const NSRect visible = [picker() alignmentRectForFrame:[picker() frame]];
                  EXPECT_EQ(NSMinX(visible), controls);
                  EXPECT_EQ(NSWidth([[frontWindow() contentView] frame]), controls + 100 + 10);

                  NSButton* const ok = buttonTitled("OK");
                  const NSRect button = [ok alignmentRectForFrame:[ok frame]];
                  EXPECT_EQ(NSMinY(button), 10);
                  EXPECT_EQ(NSMinY(visible) - NSMaxY(button), 16 + 8);
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

TEST_F(MacStories, TheUsualKeysEditTheMinutes) {
    run({}, {{launched, [] { pick("Settings"); }}, {panel, [] {
                                                        type(@"42");
                                                        pressCommandInWindow(@"a");
                                                        type(@"7");
                                                        EXPECT_EQ(typed(), "7") << "all was selected";
                                                        pressCommandInWindow(@"a");
                                                        pressCommandInWindow(@"x");
                                                        EXPECT_EQ(typed(), "");
                                                        pressCommandInWindow(@"v");
                                                        EXPECT_EQ(typed(), "7");
                                                        closeFrontWindow();
                                                    }}});
}

TEST_F(MacStories, TheKeyForQuittingDoesNothingWhileTheSettingsAreUp) {
    run({},
        {{launched, [] { pick("Settings"); }}, {panel, [] { pressCommandInWindow(@"q"); }}, {passed(200ms), [] {
                                                                                                 EXPECT_TRUE(
                                                                                                     panel());
                                                                                                 closeFrontWindow();
                                                                                             }}});
}

TEST_F(MacStories, EscapeClosesTheSettingsAndSavesNothing) {
    run({}, {
                {launched, [] { pick("Settings"); }},
                {panel,
                 [] {
                     type(@"42");
                     // what AppKit asks the field's delegate first, and GNUstep does not
                     auto* const editor = static_cast<NSTextView*>([minutes() currentEditor]);
                     EXPECT_TRUE([static_cast<id>([minutes() delegate]) control:minutes()
                                                                       textView:editor
                                                            doCommandBySelector:@selector(cancelOperation:)]);
                 }},
                {noWindow, [] { EXPECT_EQ(stored(@"TimerInterval"), nil); }},
            });
}

TEST_F(MacStories, TheButtonIsFivePointsLargerThanItsLabelNeeds) {
    run({}, {{launched, [] { pick("Settings"); }}, {panel, [] {
                                                        NSButton* const button = buttonTitled("OK");
                                                        const NSSize padded = [button frame].size;
                                                        [button sizeToFit];
                                                        const NSSize plain = [button frame].size;
                                                        EXPECT_EQ(padded.width, plain.width + 10);
                                                        EXPECT_EQ(padded.height, plain.height + 10);
                                                        closeFrontWindow();
                                                    }}});
}

} // namespace
