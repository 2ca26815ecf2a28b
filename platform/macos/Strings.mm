#import "platform/macos/Strings.hpp"

#include "platform/Fatal.hpp"

namespace macos {

NSString* toCocoa(std::string_view text) {
    NSString* string = [[[NSString alloc] initWithBytes:text.data()
                                                 length:text.size()
                                               encoding:NSUTF8StringEncoding] autorelease];
    return string ? string : (platform::fatal(), nil);
}

std::string fromCocoa(NSString* text) {
    const char* const bytes = [text UTF8String];
    return bytes ? bytes : "";
}

} // namespace macos
