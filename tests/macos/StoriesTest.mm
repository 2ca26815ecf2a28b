#import "tests/macos/MacStories.hpp"

namespace {

using namespace macos_tests;

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

TEST_F(MacStories, TheAboutBoxShowsTheBuildAndOpensLinks) {
    run({}, {
                {launched, [] { pick("About Marvelode Timer"); }},
                {panel,
                 [] {
                     EXPECT_TRUE(reads("Marvelode Timer"));
                     EXPECT_TRUE(reads("Version: " MARVELODE_VERSION));
                     NSButton* const ok = buttonTitled("OK");
                     EXPECT_EQ(NSMinY([ok alignmentRectForFrame:[ok frame]]), 16);
                     NSView* const license = buttonTitled("License");
                     NSView* afterTabs = [license nextKeyView];
                     for (int tabs = 1; tabs < 20 && afterTabs != license; ++tabs) {
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

TEST_F(MacStories, LinksStandOnOneLineInTheAccentColour) {
    run({}, {{launched, [] { pick("About Marvelode Timer"); }},
             {panel, [] {
                  for (const char* each : {"License", "The Marvelode makers", "Support"}) {
                      NSButton* const link = buttonTitled(each);
                      NSDictionary* const look = [[link attributedTitle] attributesAtIndex:0
                                                                            effectiveRange:nullptr];
                      EXPECT_GE(NSWidth([link frame]), [[link attributedTitle] size].width) << each;
                      EXPECT_TRUE([[look objectForKey:NSForegroundColorAttributeName]
                          isEqual:[NSColor controlAccentColor]]);
                      EXPECT_EQ([look objectForKey:NSUnderlineStyleAttributeName], nil);
                      EXPECT_EQ([[look objectForKey:NSParagraphStyleAttributeName] lineBreakMode],
                                NSLineBreakByClipping);
                  }
                  closeFrontWindow();
              }}});
}

TEST_F(MacStories, EscapeClosesTheAboutBox) {
    run({}, {{launched, [] { pick("About Marvelode Timer"); }},
             {panel, [] { [frontWindow() tryToPerform:@selector(cancelOperation:) with:nil]; }}});
}

} // namespace
