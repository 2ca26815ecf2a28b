#import "tests/macos/Messages.hpp"

namespace {

using namespace macos_tests;

/// The message that says where the keyboard is when the About box, which has no text field, comes up.
class FirstFocus : public Messages {
protected:
    std::string inTheAboutBox() {
        recorder.watch<BOOL, NSResponder*>([NSPanel class], "makeFirstResponder:");
        run({"-TimerInterval", "600"}, {{launched,
                                         [this] {
                                             recorder.clear();
                                             pick("About Marvelode Timer");
                                         }},
                                        {window, [] { closeFrontWindow(); }}});
        return linesAbout({"NSPanel"}).front();
    }

    static std::string expected() {
        return std::string{"NSPanel makeFirstResponder:"} +
               ([NSApp isFullKeyboardAccessEnabled] ? "NSButton" : "nil");
    }
};

TEST_F(FirstFocus, IsOnNoButtonByDefault) {
    store(@"FullKeyboardAccess", @(0));
    EXPECT_EQ(inTheAboutBox(), expected());
}

TEST_F(FirstFocus, IsOnTheButtonWithFullKeyboardAccess) {
    store(@"FullKeyboardAccess", @(1)); // stands for the system's setting, which a Mac's test does not touch
    EXPECT_EQ(inTheAboutBox(), expected());
}

TEST_F(Messages, PlaceControlsByWhatTheEyeSeesOfThem) {
    recorder.watch<NSRect, NSRect>([NSView class], "alignmentRectForFrame:");
    recorder.watch<NSRect, NSRect>([NSView class], "frameForAlignmentRect:");
    std::size_t controls = 0;
    run({"-TimerInterval", "600"}, {{launched,
                                     [this] {
                                         recorder.clear();
                                         pick("Settings");
                                     }},
                                    {window, [&] {
                                         controls = [[[frontWindow() contentView] subviews] count];
                                         closeFrontWindow();
                                     }}});
    EXPECT_EQ(linesAbout({"frameForAlignmentRect"}).size(), controls);
    EXPECT_GE(linesAbout({"alignmentRectForFrame"}).size(), controls - 1) << "all but the picture";
}

} // namespace
