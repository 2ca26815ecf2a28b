// Sounds: beeps are counted, and MPEG-4 files are silent sounds.

#import "tests/macos/shims/Heard.hpp"

#import <AppKit/AppKit.h>

#include <cstring>

// Some of the methods replace GNUstep's own.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

/// An MPEG-4 sound, silent here.
@interface MpegSound : NSSound
@end

namespace {

int beepCount = 0;

} // namespace

int beeps() { return beepCount; }

#undef NSBeep

void countedBeep() {
    ++beepCount;
    NSBeep();
}

@implementation MpegSound

- (BOOL)play {
    return YES;
}

@end

@interface NSSound (ShimMethods)
@end

@implementation NSSound (ShimMethods)

- (id)initWithContentsOfURL:(NSURL*)url byReference:(BOOL)byReference {
    NSData* const bytes = [NSData dataWithContentsOfURL:url];
    if ([bytes length] > 8 && std::memcmp(static_cast<const char*>([bytes bytes]) + 4, "ftyp", 4) == 0) {
        [self release];
        return [[MpegSound alloc] init];
    }
    return [self initWithContentsOfFile:[url path] byReference:byReference];
}

@end
