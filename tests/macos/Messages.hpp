#pragma once

// The messages that AppKit is sent, to the letter: a misspelt selector, a forgotten one, or one out of order fails
// here and not on a user's Mac. The program runs as it is, on top of GNUstep and the shims.

#import "tests/macos/Recorder.hpp"
#import "tests/macos/WholeProgram.hpp"

#include <algorithm>
#include <string>

namespace macos_tests {

class Messages : public WholeProgram {
protected:
    Recorder& recorder = Recorder::shared();

    void SetUp() override { [NSApplication sharedApplication]; } // which much of AppKit cannot be used without
    void begin() override { recorder.start(); }

    /// The lines that speak of any of `subjects`, in order.
    Lines linesAbout(const Lines& subjects) const {
        Lines found;
        for (const std::string& line : recorder.lines()) {
            if (std::any_of(subjects.begin(), subjects.end(),
                            [&](const std::string& each) { return line.find(each) != std::string::npos; })) {
                found.push_back(line);
            }
        }
        return found;
    }

    /// The lines from the first one that reads `begin`; none if there is no such line.
    static Lines from(const std::string& begin, const Lines& lines) {
        return {std::find(lines.begin(), lines.end(), begin), lines.end()};
    }

    static Lines first(std::size_t count, Lines lines) {
        lines.resize(std::min(count, lines.size()));
        return lines;
    }

    static std::string scheduled(const std::string& interval, const std::string& repeats) {
        return "NSTimer scheduledTimerWithTimeInterval:" + interval +
               " target:TimerTarget selector:timeExpired: userInfo:nil repeats:" + repeats;
    }

    void watchAlerts() {
        const Class kind = [NSAlert class];
        recorder.watch<void, NSAlertStyle>(kind, "setAlertStyle:");
        recorder.watch<void, NSImage*>(kind, "setIcon:");
        recorder.watch<void, NSString*>(kind, "setMessageText:");
        recorder.watch<void, NSString*>(kind, "setInformativeText:");
        recorder.watch<NSButton*, NSString*>(kind, "addButtonWithTitle:");
        recorder.watch<void, BOOL>(kind, "setShowsSuppressionButton:");
        recorder.watch<NSButton*>(kind, "suppressionButton");
        recorder.watch<id>(kind, "window");
        recorder.watch<NSInteger>(kind, "runModal", true);
    }

    static inline const std::string onAllSpaces = std::to_string(1 + (1 << 8)); ///< Full-screen ones included.

    void watchWindows() {
        recorder.watch<void, NSInteger>([NSWindow class], "setLevel:");
        recorder.watch<void, NSUInteger>([NSWindow class], "setCollectionBehavior:");
        recorder.watch<void, BOOL>([NSWindow class], "setPreventsApplicationTerminationWhenModal:");
        recorder.watch<void, SEL, id, NSTimeInterval, NSArray*>([NSWindow class],
                                                                "performSelector:withObject:afterDelay:inModes:");
    }

    void watchSettings() {
        const Class kind = [NSUserDefaults class];
        recorder.watch<void, id, NSString*>(kind, "setObject:forKey:");
        recorder.watch<BOOL, NSString*>(kind, "boolForKey:");
        recorder.watch<NSInteger, NSString*>(kind, "integerForKey:");
        recorder.watch<NSString*, NSString*>(kind, "stringForKey:");
    }

    void watchTimers() {
        recorder.watch<NSTimer*, NSTimeInterval, id, SEL, id, BOOL>(
            object_getClass([NSTimer class]), "scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:");
    }
};

} // namespace macos_tests
