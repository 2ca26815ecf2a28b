#import "platform/macos/InFront.hpp"

namespace macos {

void keepInFront(NSWindow* window, NSInteger level) {
    [window setLevel:level];
    const NSWindowCollectionBehavior onAllSpaces = NSWindowCollectionBehaviorCanJoinAllSpaces;
    const NSWindowCollectionBehavior besideFullScreen = NSWindowCollectionBehaviorFullScreenAuxiliary;
    [window setCollectionBehavior:onAllSpaces | besideFullScreen];
}

} // namespace macos
