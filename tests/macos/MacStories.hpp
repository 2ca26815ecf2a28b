#pragma once

// What a user of the Mac sees: the whole program on the real run loop, in real time, with a work interval of a
// second. The same behaviour is told in every detail by the stories on the simulated desktop.

#import "platform/macos/Strings.hpp"
#import "tests/macos/WholeProgram.hpp"

#include <objc/runtime.h>

#include <algorithm>

namespace macos_tests {

using macos::fromCocoa;
using macos::toCocoa;

/// Where the links led that were clicked.
inline Lines openedAddresses;

inline BOOL openURL(id, SEL, NSURL* url) {
    openedAddresses.push_back(fromCocoa([url absoluteString]));
    return YES;
}

class MacStories : public WholeProgram {
protected:
    void SetUp() override {
        store(@"Version", @"1.0.0"); // not the first run
        store(@"PopupAlerts", @(1));
        store(@"ShowCountdown", @(1));
        store(@"AutoRestart", @(0));
        method_setImplementation(class_getInstanceMethod([NSWorkspace class], @selector(openURL:)),
                                 reinterpret_cast<IMP>(openURL));
    }

    static std::string title() { return fromCocoa([[statusButton() attributedTitle] string]); }
    static NSColor* titleColor() {
        return [[statusButton()
            attributedTitle] attribute:NSForegroundColorAttributeName atIndex:0 effectiveRange:nullptr];
    }

    /// The file name of the resource that has the picture on the status item.
    static std::string icon() {
        const auto pixels = [](NSImage* image) {
            for (NSImageRep* each in [image representations]) {
                if ([each isKindOfClass:[NSBitmapImageRep class]]) {
                    auto* const bitmap = static_cast<NSBitmapImageRep*>(each);
                    return std::string{reinterpret_cast<const char*>([bitmap bitmapData]),
                                       static_cast<std::size_t>([bitmap bytesPerPlane])};
                }
            }
            return std::string{};
        };
        NSImage* const shown = [statusButton() image];
        for (const char* each : {"Marvelode.png", "MarvelodeGrey.png"}) {
            if (shown && pixels(shown) == pixels([NSImage imageNamed:toCocoa(each)])) {
                return each;
            }
        }
        return "";
    }

    /// The texts in the window in front, in the order in which they were put there.
    static Lines texts() {
        Lines found;
        for (NSTextField* each in viewsOfClass([NSTextField class])) {
            found.push_back(fromCocoa([each stringValue]));
        }
        return found;
    }

    static bool reads(const std::string& text) {
        const Lines all = texts();
        return std::find(all.begin(), all.end(), text) != all.end();
    }

    static NSTextField* minutes() {
        for (NSTextField* each in viewsOfClass([NSTextField class])) {
            if ([each isEditable]) {
                return each;
            }
        }
        return nil;
    }

    static NSPopUpButton* picker() { return [viewsOfClass([NSPopUpButton class]) lastObject]; }

    /// The on-off controls in the window in front, from top to bottom.
    static std::vector<NSButton*> switches() {
        std::vector<NSButton*> found;
        for (NSButton* each in viewsOfClass([NSButton class])) {
            if (![each isKindOfClass:[NSPopUpButton class]] && [[each cell] showsStateBy] != NSNoCellMask) {
                found.push_back(each);
            }
        }
        return found;
    }

    static NSRect frameOfText(const std::string& text) {
        for (NSTextField* each in viewsOfClass([NSTextField class])) {
            if ([[each stringValue] isEqualToString:toCocoa(text)]) {
                return [each frame];
            }
        }
        return NSZeroRect;
    }

    static NSRect frameOfPicture() { return [[viewsOfClass([NSImageView class]) lastObject] frame]; }

    static NSEvent* key(NSString* character, NSEventModifierFlags modifiers) {
        return [NSEvent keyEventWithType:NSEventTypeKeyDown
                                location:NSZeroPoint
                           modifierFlags:modifiers
                               timestamp:0
                            windowNumber:[frontWindow() windowNumber]
                                 context:nil
                              characters:character
             charactersIgnoringModifiers:character
                               isARepeat:NO
                                 keyCode:0];
    }

    /// Presses the keys of those letters one after the other.
    static void type(NSString* letters) {
        for (NSUInteger index = 0; index < [letters length]; ++index) {
            [frontWindow() sendEvent:key([letters substringWithRange:NSMakeRange(index, 1)], 0)];
        }
    }

    static void pressReturn() { [frontWindow() performKeyEquivalent:key(@"\r", 0)]; }

    /// What AppKit does with a key that is pressed together with Command while a window is up.
    static void pressCommandInWindow(NSString* letter) {
        [NSApp sendEvent:key(letter, NSEventModifierFlagCommand)];
    }

    static std::string typed() { return fromCocoa([[minutes() currentEditor] string]); }

    /// What the open menu does with a key that is pressed together with Command.
    static void pressCommand(NSString* letter) {
        [statusMenu() update]; // as it does when it opens
        [statusMenu() performKeyEquivalent:key(letter, NSEventModifierFlagCommand)];
    }
};

} // namespace macos_tests
