#import "tests/macos/Messages.hpp"

namespace {

using namespace macos_tests;

/// The button of an item that is gone again: its class may be a secret one.
id statusItemButton() {
    NSStatusItem* const item = [[NSStatusBar systemStatusBar] statusItemWithLength:50];
    const id button = [[[item button] retain] autorelease];
    [[NSStatusBar systemStatusBar] removeStatusItem:item];
    return button;
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

TEST_F(Messages, DrawNothingAgainThatDidNotChange) {
    const Class button = object_getClass(statusItemButton());
    recorder.watch<void, NSImage*>(button, "setImage:");
    recorder.watch<void, NSSize>([NSImage class], "setSize:");
    recorder.watch<void, NSAttributedString*>(button, "setAttributedTitle:");
    run({"-TimerInterval", "5400"}, {{passed(2500ms), [] {}}});
    EXPECT_EQ(recorder.lines(), (Lines{"NSStatusBarButton setImage:NSImage", "NSImage setSize:16x26",
                                       R"(NSStatusBarButton setAttributedTitle:">1h")"}));
}

} // namespace
