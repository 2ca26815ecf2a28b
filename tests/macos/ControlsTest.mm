#import "tests/macos/Messages.hpp"

namespace {

using namespace macos_tests;

/// Opens and closes the window that the entry of that title runs.
class Controls : public Messages {
protected:
    void open(const char* entry) {
        store(@"Version", @"1");
        run({"-TimerInterval", "600"}, {{launched,
                                         [this, entry] {
                                             recorder.clear();
                                             pick(entry);
                                         }},
                                        {window, [] { closeFrontWindow(); }}});
    }
};

TEST_F(Controls, KeepTheMinutesOnOneLine) {
    recorder.watch<void, BOOL>([NSTextFieldCell class], "setUsesSingleLineMode:");
    recorder.watch<void, BOOL>([NSTextFieldCell class], "setScrollable:");
    open("Settings");
    EXPECT_EQ(first(2, linesAbout({"NSTextFieldCell"})),
              (Lines{"NSTextFieldCell setUsesSingleLineMode:YES", "NSTextFieldCell setScrollable:YES"}));
}

TEST_F(Controls, LetTheDefaultButtonGrow) {
    recorder.watch<void, NSBezelStyle>([NSButton class], "setBezelStyle:");
    recorder.watch<void, NSString*>([NSButton class], "setKeyEquivalent:");
    open("Settings");
    EXPECT_EQ(linesAbout({"setBezelStyle", "setKeyEquivalent"}),
              (Lines{"NSButton setBezelStyle:2", "NSButton setKeyEquivalent:\"\r\""}));
}

TEST_F(Controls, AreNamedByTheirRows) {
    recorder.watch<void, NSString*>([NSView class], "setAccessibilityLabel:");
    open("Settings");
    EXPECT_EQ(linesAbout({"setAccessibilityLabel"}),
              (Lines{R"(NSTextField setAccessibilityLabel:"Interval in minutes")",
                     R"(NSButton setAccessibilityLabel:"Restart after sleep")",
                     R"(NSButton setAccessibilityLabel:"Auto restart timer")",
                     R"(NSPopUpButton setAccessibilityLabel:"Reminder sound")"}));
}

TEST_F(Controls, AnnounceLinksAsLinks) {
    recorder.watch<void, NSString*>([NSView class], "setAccessibilityRole:");
    open("About Marvelode Timer");
    EXPECT_EQ(recorder.lines(), Lines(3, "NSButton setAccessibilityRole:" + inWords(NSAccessibilityLinkRole)));
}

TEST_F(Controls, ShowTextsInTheColoursOfTheSystem) {
    recorder.watch<NSColor*>(object_getClass([NSColor class]), "labelColor");
    recorder.watch<NSColor*>(object_getClass([NSColor class]), "controlAccentColor");
    open("About Marvelode Timer");
    EXPECT_EQ(linesAbout({"controlAccentColor"}).size(), 3U) << "three links";
    EXPECT_GE(linesAbout({"labelColor"}).size(), 6U) << "heading, date, version, build, two beside links";
}

} // namespace
