#import "tests/macos/Messages.hpp"

#include <cstdlib>
#include <memory>

namespace {

using namespace macos_tests;

TEST_F(Messages, LaunchInOrderAndTakeLeave) {
    recorder.watch<NSURL*, NSString*, NSString*>([NSBundle class], "URLForResource:withExtension:");
    recorder.watch<id, NSURL*>(object_getClass([NSData class]), "dataWithContentsOfURL:");
    recorder.watch<id, NSURL*, BOOL>([NSSound class], "initWithContentsOfURL:byReference:");
    recorder.watch<void, id>([NSApplication class], "setDelegate:");
    recorder.watch<NSStatusItem*, CGFloat>([NSStatusBar class], "statusItemWithLength:");
    const Class center = object_getClass([[NSWorkspace sharedWorkspace] notificationCenter]);
    recorder.watch<void, id, SEL, NSString*, id>(center, "addObserver:selector:name:object:");
    recorder.watch<void, id>(center, "removeObserver:");
    watchTimers();
    run({"-TimerInterval", "600"}, {{launched, [] {}}});

    Lines expected{R"(NSBundle URLForResource:"BuildInfo" withExtension:"txt")",
                   R"(NSData dataWithContentsOfURL:"BuildInfo.txt")"};
    for (const marvelode::Cfg::Sound each : marvelode::Cfg::allSounds) {
        if (each == marvelode::Cfg::Sound::System) {
            continue;
        }
        const std::string sound{marvelode::Cfg::rawValue(each)};
        expected.push_back(R"(NSBundle URLForResource:")" + sound + R"(" withExtension:"m4a")");
        expected.push_back(R"(NSSound initWithContentsOfURL:")" + sound + R"(.m4a" byReference:YES)");
    }
    for (const std::string& each :
         {std::string{"NSApplication setDelegate:ApplicationDelegate"},
          std::string{"NSStatusBar statusItemWithLength:50"}, scheduled("1", "YES"),
          std::string{"NSNotificationCenter addObserver:ApplicationDelegate selector:"
                      "didWakeFromSleep: name:\"NSWorkspaceDidWakeNotification\" object:nil"},
          scheduled("600", "NO")}) {
        expected.push_back(each);
    }
    EXPECT_EQ(first(expected.size(), linesAbout({"BuildInfo", ".m4a", "\"m4a\"", "NSStatusBar", "TimerTarget",
                                                 "ApplicationDelegate"})),
              expected);
    EXPECT_EQ(recorder.lines().back(), "NSNotificationCenter removeObserver:ApplicationDelegate");
}

TEST_F(Messages, ScheduleTheTimers) {
    watchTimers();
    recorder.watch<void, NSTimeInterval>([NSTimer class], "setTolerance:");
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Restart timer"); }}});
    EXPECT_EQ(linesAbout({"TimerTarget", "setTolerance"}),
              (Lines{scheduled("1", "YES"), "NSTimer setTolerance:0.1", // the refresh alone
                     scheduled("600", "NO"), scheduled("600", "NO")}));
}

TEST_F(Messages, ReadAndWriteTheSettings) {
    watchSettings();
    run({"-TimerInterval", "600"}, {{launched, [] {}}});
    const Lines& lines = recorder.lines();
    for (const char* each :
         {R"(NSUserDefaults stringForKey:"Version")",
          (R"(NSUserDefaults setObject:")" MARVELODE_VERSION R"(" forKey:"Version")"),
          R"(NSUserDefaults setObject:boolean 1 forKey:"PopupAlerts")",
          R"(NSUserDefaults setObject:boolean 1 forKey:"AutoRestart")",
          R"(NSUserDefaults setObject:boolean 1 forKey:"ResartOnWake")",
          R"(NSUserDefaults setObject:boolean 1 forKey:"ShowCountdown")", R"(NSUserDefaults boolForKey:"Mute")",
          R"(NSUserDefaults boolForKey:"PopupAlerts")", R"(NSUserDefaults integerForKey:"TimerInterval")",
          R"(NSUserDefaults stringForKey:"AlertSound")"}) {
        EXPECT_NE(std::find(lines.begin(), lines.end(), each), lines.end()) << each;
    }
}

TEST_F(Messages, SaveTheFormInOrder) {
    watchSettings();
    store(@"Version", @"1");
    run({"-TimerInterval", "600"}, {{launched, [] { pick("Settings"); }}, {window, [this] {
                                                                               recorder.clear();
                                                                               press(buttonTitled("OK"));
                                                                           }}});
    EXPECT_EQ(linesAbout({"setObject:"}), (Lines{
                                              R"(NSUserDefaults setObject:"System" forKey:"AlertSound")",
                                              R"(NSUserDefaults setObject:boolean 0 forKey:"ResartOnWake")",
                                              R"(NSUserDefaults setObject:boolean 0 forKey:"AutoRestart")",
                                              R"(NSUserDefaults setObject:double 600 forKey:"TimerInterval")",
                                          }));
}

TEST_F(Messages, PlayTheSoundThatWasChosen) {
    recorder.watch<id, NSURL*, BOOL>([NSSound class], "initWithContentsOfURL:byReference:");
    store(@"Version", @"1");
    store(@"PopupAlerts", @(1));
    store(@"AlertSound", @"Whistle");
    run({"-TimerInterval", "1"}, {{alert, [] { press(alertButton(1)); }}});
    EXPECT_EQ(recorder.lines().size(), 3U) << "each file is opened once";
    EXPECT_EQ(playedSounds(), (Lines{"Whistle.m4a"}));
}

TEST_F(Messages, QuitWithoutASender) {
    recorder.watch<void, id>([NSApplication class], "terminate:");
    run({"-TimerInterval", "600"}, {});
    EXPECT_EQ(recorder.lines(), (Lines{"NSApplication terminate:nil"}));
}

TEST_F(Messages, DeclareTheDelegates) {
    const auto protocols = [](NSString* className) {
        Lines names;
        unsigned count = 0;
        Protocol* __unsafe_unretained* const list = class_copyProtocolList(NSClassFromString(className), &count);
        const std::unique_ptr<void, decltype(&std::free)> owner{list, &std::free};
        for (unsigned index = 0; index < count; ++index) {
            names.emplace_back(protocol_getName(list[index]));
        }
        std::sort(names.begin(), names.end());
        return names;
    };
    EXPECT_EQ(protocols(@"ApplicationDelegate"),
              (Lines{"NSApplicationDelegate", "UNUserNotificationCenterDelegate"}));
    EXPECT_EQ(protocols(@"PanelDelegate"), (Lines{"NSWindowDelegate"}));
    EXPECT_EQ(protocols(@"MenuTarget"), (Lines{"NSMenuDelegate"}));
    EXPECT_EQ(protocols(@"HostingView"), (Lines{"NSTextFieldDelegate"}));
}

TEST_F(Messages, HoldAnActivityForAsLongAsTheProgramRuns) {
    recorder.watch<id, NSActivityOptions, NSString*>([NSProcessInfo class], "beginActivityWithOptions:reason:");
    recorder.watch<void, id>([NSProcessInfo class], "endActivity:");
    const auto activities = [this] { return linesAbout({"ActivityWith", "endActivity"}); };
    const Lines begun{
        "NSProcessInfo beginActivityWithOptions:" + std::to_string(NSActivityUserInitiatedAllowingIdleSystemSleep) +
        R"( reason:"Breaks are due on the second")"};
    run({"-TimerInterval", "600"}, {{launched, [&] { EXPECT_EQ(activities(), begun); }}});
    EXPECT_EQ(first(1, activities()), begun);
    EXPECT_EQ(NSActivityUserInitiatedAllowingIdleSystemSleep & NSActivityIdleSystemSleepDisabled, 0U);
}

TEST_F(Messages, AnswerForStateThatIsRestored) {
    const SEL question = sel_registerName("applicationSupportsSecureRestorableState:");
    run({"-TimerInterval", "600"},
        {{launched, [question] {
              const id delegate = [NSApp delegate];
              const auto answer = reinterpret_cast<BOOL (*)(id, SEL, id)>([delegate methodForSelector:question]);
              EXPECT_TRUE(answer(delegate, question, NSApp));
          }}});
}

} // namespace
