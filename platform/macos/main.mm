// Where the program starts on a Mac.

#include "app/main.hpp"

#import "platform/macos/CocoaDesktop.hpp"

int main(int argc, char** argv) {
    @autoreleasepool {
        cocoa::CocoaDesktop desktop;
        return marvelode::marvelodeTimer(argc, argv);
    }
}
