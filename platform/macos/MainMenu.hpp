#pragma once

// The main menu, which is never on screen: AppKit looks there for the keys of editing. It has no entry for
// quitting, so that the status menu alone decides when the program may be quit.

#import <AppKit/AppKit.h>

namespace macos {

/// A menu bar with an Edit menu; autoreleased.
NSMenu* makeMainMenu();

} // namespace macos
