#import "tests/macos/Recorder.hpp"

#include <algorithm>
#include <sstream>

namespace macos_tests {
namespace {

/// The name of the nearest class that is not a secret of AppKit's or of the shims'.
std::string documentedName(Class kind) {
    for (const char* each : {"NSStatusItem", "NSStatusBarButton", "NSPopUpButton", "NSButton", "NSMenuItem",
                             "NSNotificationCenter", "NSMenuPanel", "NSPanel", "NSProcessInfo", "NSTimer"}) {
        for (Class ancestor = kind; ancestor; ancestor = class_getSuperclass(ancestor)) {
            if (ancestor == objc_getClass(each)) {
                return each;
            }
        }
    }
    return class_getName(kind);
}

} // namespace

std::string inWords(id object) {
    if (!object) {
        return "nil";
    }
    if ([object isKindOfClass:[NSString class]]) {
        return std::string{"\""} + [object UTF8String] + "\"";
    }
    if ([object isKindOfClass:[NSAttributedString class]]) {
        return inWords([object string]);
    }
    if ([object isKindOfClass:[NSNumber class]]) {
        const char type = [object objCType][0];
        const bool isBoolean = type == 'c' || type == 'C' || type == 'B';
        return (isBoolean ? "boolean " : type == 'd' ? "double " : "integer ") + inWords([object doubleValue]);
    }
    if ([object isKindOfClass:[NSArray class]]) {
        std::string list;
        for (id each in object) {
            list += (list.empty() ? "" : ", ") + inWords(each);
        }
        return list;
    }
    if ([object isKindOfClass:[NSURL class]]) {
        return inWords([[object path] lastPathComponent]);
    }
    return documentedName([object class]);
}

std::string inWords(SEL selector) { return selector ? sel_getName(selector) : "NULL"; }

std::string inWords(double number) {
    std::ostringstream text;
    text << number;
    return text.str();
}

std::string inWords(NSInteger number) { return std::to_string(number); }

std::string inWords(NSUInteger number) { return std::to_string(number); }

std::string inWords(NSSize size) { return inWords(size.width) + "x" + inWords(size.height); }

std::string inWords(NSRect rectangle) {
    return inWords(rectangle.origin.x) + "," + inWords(rectangle.origin.y) + " " + inWords(rectangle.size);
}

std::string inWords(const std::string& text) { return text; }

Recorder& Recorder::shared() {
    static Recorder recorder;
    return recorder;
}

void Recorder::add(id receiver, SEL selector, const std::vector<std::string>& arguments) {
    std::string line = documentedName(object_getClass(receiver));
    line += ' ';
    std::size_t next = 0;
    for (const char character : std::string{sel_getName(selector)}) {
        line += character;
        if (character == ':') {
            line += arguments.at(next++);
            line += next < arguments.size() ? " " : "";
        }
    }
    _lines.push_back(line);
}

std::vector<std::string> Recorder::messagesTo(const std::vector<std::string>& classNames) const {
    std::vector<std::string> messages;
    for (const std::string& line : _lines) {
        const std::string receiver = line.substr(0, line.find(' '));
        if (std::find(classNames.begin(), classNames.end(), receiver) != classNames.end()) {
            messages.push_back(line);
        }
    }
    return messages;
}

} // namespace macos_tests
