#pragma once

// Windows that a user must not lose: a modal window behind others would hold back every reminder, and a program
// without an icon in the Dock has nothing to bring it back with.

#import <AppKit/AppKit.h>

namespace macos {

/// Keeps `window` above those of lower levels, on every space, full-screen ones included.
void keepInFront(NSWindow* window, NSInteger level);

} // namespace macos
