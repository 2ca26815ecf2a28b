#pragma once

// Texts on their way between C++, where they are UTF-8, and Cocoa.

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace macos {

/// `text`, which must be well-formed UTF-8, for Cocoa; autoreleased.
NSString* toCocoa(std::string_view text);

/// `text` as UTF-8; nil counts as empty.
std::string fromCocoa(NSString* text);

} // namespace macos
