// The methods behind Shims.h that need no more than a few lines.

#import <AppKit/AppKit.h>

// Some of the methods replace GNUstep's own.
#pragma clang diagnostic ignored "-Wobjc-protocol-method-implementation"

@interface NSFont (ShimMethods)
@end

@implementation NSFont (ShimMethods)

+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)fontSize weight:(NSFontWeight)weight {
    (void)weight;
    return [NSFont userFixedPitchFontOfSize:fontSize];
}

@end

@interface NSColor (ShimMethods)
@end

@implementation NSColor (ShimMethods)

+ (NSColor*)controlAccentColor {
    return [NSColor colorWithCalibratedRed:0 green:0.3 blue:0.8 alpha:1];
}

@end

@interface NSUserDefaults (ShimMethods)
@end

@implementation NSUserDefaults (ShimMethods)

- (NSString*)stringForKey:(NSString*)key {
    const id value = [self objectForKey:key];
    if ([value isKindOfClass:[NSNumber class]]) {
        return [value stringValue];
    }
    return [value isKindOfClass:[NSString class]] ? value : nil;
}

@end

@interface NSTimer (ShimMethods)
@end

@implementation NSTimer (ShimMethods)

- (void)setTolerance:(NSTimeInterval)tolerance {
    (void)tolerance;
}

@end
