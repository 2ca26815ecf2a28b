#import "tests/macos/Messages.hpp"

namespace {

using namespace macos_tests;

/// A style that no panel here begins with, to tell what is added from what is there.
NSUInteger styleOfAPlainPanel(id, SEL) { return 1; }

const std::string running = "NSApplication runModalForWindow:NSPanel";

/// Whether AppKit sends the message by itself while it runs a modal panel.
bool isAppKitsOwn(const std::string& line) {
    return line == "NSPanel center" || line == "NSPanel orderFrontRegardless" ||
           line.starts_with("NSPanel setLevel:");
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
    recorder.watch<void, BOOL>(kind, "setHidesOnDeactivate:");
    recorder.watch<void>(kind, "orderFrontRegardless");
    watchWindows();
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
        // the size of the content is not the same everywhere
        line = line.substr(0, line.starts_with("NSPanel setContentSize:") ? line.find(':') : line.size());
        const bool hasBeenRun = std::find(lines.begin(), lines.end(), running) != lines.end();
        if (!hasBeenRun || !isAppKitsOwn(line)) {
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
                         "NSPanel setHidesOnDeactivate:NO",
                         "NSPanel setLevel:" + std::to_string(NSFloatingWindowLevel),
                         "NSPanel setCollectionBehavior:" + onAllSpaces,
                         "NSPanel setContentSize",
                         "NSPanel center",
                         "HostingView setHidden:NO",
                         "NSPanel makeFirstResponder:NSTextField",
                         "NSPanel orderFrontRegardless", // also if another program is active
                         running,
                         "NSPanel close", // by the form
                         "NSApplication stopModal",
                         "NSPanel makeFirstResponder:nil", // so that what was typed is not lost
                         "HostingView setHidden:YES",
                         "NSPanel setDelegate:nil", // and gone
                         "NSPanel close",
                     }));
}

TEST_F(Messages, ShowTheAboutBoxWithoutActivatingTheProgram) {
    recorder.watch<void>([NSPanel class], "orderFrontRegardless");
    recorder.watch<void, BOOL>([NSApplication class], "activateIgnoringOtherApps:");
    recorder.watch<NSInteger, NSWindow*>([NSApplication class], "runModalForWindow:");
    run({"-TimerInterval", "600"}, {{launched,
                                     [this] {
                                         recorder.clear();
                                         pick("About Marvelode Timer");
                                     }},
                                    {window, [] { press(buttonTitled("OK")); }}});
    EXPECT_EQ(recorder.lines(), (Lines{"NSPanel orderFrontRegardless", running}));
}

} // namespace
