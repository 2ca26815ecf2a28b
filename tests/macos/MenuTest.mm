#import "tests/macos/Messages.hpp"

namespace {

using namespace macos_tests;

TEST_F(Messages, FillTheMenu) {
    recorder.watch<void, id>([NSMenu class], "setDelegate:");
    recorder.watch<void, BOOL>([NSMenu class], "setAutoenablesItems:");
    recorder.watch<void, NSMenuItem*>([NSMenu class], "addItem:");
    recorder.watch<id>(object_getClass([NSMenuItem class]), "separatorItem");
    recorder.watch<id, NSString*, SEL, NSString*>([NSMenuItem class], "initWithTitle:action:keyEquivalent:");
    recorder.watch<void, id>([NSMenuItem class], "setTarget:");
    recorder.watch<void, BOOL>([NSMenuItem class], "setEnabled:");
    recorder.watch<void, NSInteger>([NSMenuItem class], "setState:");
    store(@"Version", @"1");
    store(@"PopupAlerts", @(1));
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Mute"); }}, {launched, [] { pick("Mute"); }}});

    Lines expected{"NSMenu setDelegate:MenuTarget"}; // automatic enabling is left on
    const auto entry = [&](const std::string& title, const std::string& key, const Lines& setUp) {
        expected.push_back("NSMenuItem initWithTitle:\"" + title + "\" action:performItem: keyEquivalent:\"" + key +
                           "\"");
        expected.emplace_back("NSMenuItem setTarget:MenuTarget");
        expected.insert(expected.end(), setUp.begin(), setUp.end());
        expected.emplace_back("NSMenu addItem:NSMenuItem");
    };
    const auto separator = [&] {
        expected.insert(expected.end(), {"NSMenuItem separatorItem", "NSMenu addItem:NSMenuItem"});
    };
    entry("About Marvelode Timer", "", {"NSMenuItem setEnabled:NO"});
    separator();
    entry("Restart timer", "r", {"NSMenuItem setEnabled:NO"});
    entry("Mute", "", {"NSMenuItem setState:0"});
    entry("Popup reminders", "", {"NSMenuItem setState:1"});
    entry("Settings", "s", {"NSMenuItem setEnabled:YES"});
    separator();
    entry("Quit", "q", {});
    const std::size_t setUp = expected.size();
    expected.insert(expected.end(), {"NSMenuItem setState:1", "NSMenuItem setState:0"}); // muted and unmuted

    Lines relevant;
    for (const std::string& line :
         from(expected.front(), recorder.lines())) { // AppKit itself enables entries before each pick
        if (relevant.size() < setUp || line.starts_with("NSMenuItem setState:")) {
            relevant.push_back(line);
        }
    }
    EXPECT_EQ(relevant, expected);
}

} // namespace
