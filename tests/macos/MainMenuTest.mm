#import "tests/macos/Messages.hpp"

namespace {

using namespace macos_tests;

/// The entries of `menu` and all menus below, "title|action|key".
Lines entries(NSMenu* menu) {
    Lines found;
    for (NSMenuItem* each in [menu itemArray]) {
        if ([each hasSubmenu]) {
            const Lines below = entries([each submenu]);
            found.insert(found.end(), below.begin(), below.end());
        } else if (![each isSeparatorItem]) {
            EXPECT_EQ([each target], nil) << "the control with the keyboard is meant";
            found.push_back(std::string{[[each title] UTF8String]} + "|" + inWords([each action]) + "|" +
                            [[each keyEquivalent] UTF8String]);
        }
    }
    return found;
}

TEST_F(Messages, InstallAMainMenuForTheKeysOfEditingAndNoOthers) {
    recorder.watch<void, NSMenu*>([NSApplication class], "setMainMenu:");
    run({"-TimerInterval", "600"},
        {{launched, [] {
              EXPECT_EQ(entries([NSApp mainMenu]),
                        (Lines{"Undo|undo:|z", "Redo|redo:|Z", "Cut|cut:|x", "Copy|copy:|c", "Paste|paste:|v",
                               "Select All|selectAll:|a"}));
          }}});
    EXPECT_EQ(first(1, linesAbout({"setMainMenu"})), (Lines{"NSApplication setMainMenu:NSMenu"}));
}

} // namespace
