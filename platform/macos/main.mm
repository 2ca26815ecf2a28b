// Where the program starts on a Mac.

#include "app/main.hpp"

#import "platform/macos/MacDesktop.hpp"

int main(int argc, char** argv) {
    @autoreleasepool {
        macos::MacDesktop desktop;
        return marvelode::marvelodeTimer(argc, argv);
    }
}
