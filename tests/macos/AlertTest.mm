#import "tests/macos/Messages.hpp"

namespace {

using namespace macos_tests;

TEST_F(Messages, RunTheReminder) {
    watchAlerts();
    recorder.watch<void, NSInteger>([NSButton class], "setState:");
    recorder.watch<void, NSString*>([NSButton class], "setTitle:");
    recorder.watch<BOOL, NSApplicationActivationOptions>([NSRunningApplication class], "activateWithOptions:");
    recorder.watch<void, BOOL>([NSApplication class], "activateIgnoringOtherApps:");
    watchWindows();
    run({"-TimerInterval", "1"}, {{alert, [] {
                                       EXPECT_TRUE([frontWindow() canBecomeKeyWindow]);
                                       press(alertButton(0));
                                   }}});

    const Lines all =
        recorder.messagesTo({"NSRunningApplication", "NSApplication", "NSAlert", "NSButton", "NSPanel"});
    EXPECT_EQ(first(18, from("NSRunningApplication activateWithOptions:2", all)),
              (Lines{
                  "NSRunningApplication activateWithOptions:2",
                  "NSApplication activateIgnoringOtherApps:YES",
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
                  "NSAlert window",
                  "NSPanel setLevel:" + std::to_string(NSModalPanelWindowLevel),
                  "NSPanel setCollectionBehavior:" + onAllSpaces,
                  "NSPanel setPreventsApplicationTerminationWhenModal:NO",
                  "NSPanel performSelector:orderFrontRegardless withObject:nil afterDelay:0 inModes:" +
                      inWords(NSModalPanelRunLoopMode),
                  "NSAlert runModal",
              }));
}

TEST_F(Messages, RefuseAnInterval) {
    watchAlerts();
    store(@"Version", @"1");
    run({"-TimerInterval", "30"}, {{launched, [] { pick("Settings"); }}, // no whole minute
                                   {window, [] { press(buttonTitled("OK")); }},
                                   {alert, [] { press(alertButton(0)); }},
                                   {window, [] { closeFrontWindow(); }}});
    EXPECT_EQ(first(6, recorder.messagesTo({"NSAlert"})), (Lines{
                                                              "NSAlert setAlertStyle:0",
                                                              "NSAlert setIcon:nil",
                                                              "NSAlert setMessageText:\"Oops\"",
                                                              "NSAlert setInformativeText:\"Invalid interval\"",
                                                              "NSAlert window",
                                                              "NSAlert runModal",
                                                          }));
}

TEST_F(Messages, PutAnAlertAboveThePanelThatRunsIt) {
    recorder.watch<void, NSInteger>([NSWindow class], "setLevel:");
    store(@"Version", @"1");
    run({"-TimerInterval", "30"}, {{launched, [] { pick("Settings"); }}, // no whole minute
                                   {window,
                                    [this] {
                                        recorder.clear();
                                        press(buttonTitled("OK"));
                                    }},
                                   {alert, [] { press(alertButton(0)); }},
                                   {window, [] { closeFrontWindow(); }}});
    EXPECT_EQ(recorder.lines().front(), "NSPanel setLevel:" + std::to_string(NSModalPanelWindowLevel));
    EXPECT_GT(NSModalPanelWindowLevel, NSFloatingWindowLevel) << "where panels are";
}

} // namespace
