#pragma once

// Writes down which messages AppKit's objects are sent, in what order and with what arguments, and passes them on.
// Only messages that come straight from the program count, not those that AppKit's own methods send in turn.

#import <AppKit/AppKit.h>
#include <gtest/gtest.h>
#include <objc/runtime.h>

#include <map>
#include <string>
#include <type_traits>
#include <vector>

namespace macos_tests {

/// How an argument reads in the record.
std::string inWords(id object);
std::string inWords(SEL selector);
std::string inWords(double number);
std::string inWords(NSInteger number);
std::string inWords(NSUInteger number);
std::string inWords(NSSize size);
std::string inWords(NSRect rectangle);
std::string inWords(const std::string& text);

template <typename Argument>
std::string describe(Argument argument) {
    if constexpr (std::is_same_v<Argument, BOOL>) {
        return argument ? "YES" : "NO";
    } else if constexpr (std::is_enum_v<Argument> || std::is_same_v<Argument, int>) {
        return inWords(static_cast<NSInteger>(argument));
    } else if constexpr (std::is_same_v<Argument, unsigned long long>) {
        return inWords(static_cast<NSUInteger>(argument));
    } else if constexpr (std::is_convertible_v<Argument, id>) {
        return inWords(static_cast<id>(argument));
    } else {
        return inWords(argument);
    }
}

/// The record of this process.
class Recorder {
public:
    static Recorder& shared();

    /// Begins to record; until then messages are only passed on.
    void start() { _isRecording = true; }

    /// Forgets what was recorded so far.
    void clear() { _lines.clear(); }

    /// Adds a line: the receiver's class as the documentation calls it, the selector, and the arguments in their
    /// places.
    void add(id receiver, SEL selector, const std::vector<std::string>& arguments);

    /// The lines of messages to objects of those classes, in order.
    std::vector<std::string> messagesTo(const std::vector<std::string>& classNames) const;

    /// All lines, "Class message", in order.
    const std::vector<std::string>& lines() const { return _lines; }

    /// Watches a method of `kind` with that result and those arguments. The name must be the one in Apple's
    /// documentation; a class that has no such method fails the test. What a method that `waits` for the user calls
    /// on the way is recorded too. Each selector can be watched in one class only.
    template <typename Result, typename... Arguments>
    void watch(Class kind, const char* selectorName, bool waits = false) {
        const SEL selector = sel_registerName(selectorName);
        Method const method = class_getInstanceMethod(kind, selector);
        ASSERT_NE(method, nullptr) << class_getName(kind) << " has no method " << selectorName;
        IMP const original = method_getImplementation(method);
        const auto replacement = +[](id self, SEL called, Arguments... arguments) -> Result {
            Recorder& recorder = shared();
            const Watched& watched = recorder.find(called);
            if (recorder._isRecording && recorder._depth == 0 && isA(object_getClass(self), watched.kind)) {
                recorder.add(self, called, {describe(arguments)...});
            }
            const Depth depth{recorder, watched.waits};
            return reinterpret_cast<Result (*)(id, SEL, Arguments...)>(watched.original)(self, called,
                                                                                         arguments...);
        };
        _watched[selectorName] = {kind, original, waits};
        method_setImplementation(method, reinterpret_cast<IMP>(replacement));
    }

private:
    struct Watched {
        Class kind;
        IMP original;
        bool waits;
    };

    /// Keeps quiet about what a watched method sends in turn.
    class Depth {
    public:
        Depth(Recorder& recorder, bool waits)
            : _recorder{recorder}
            , _before{recorder._depth} {
            _recorder._depth = waits ? 0 : _before + 1;
        }
        Depth(const Depth&) = delete;
        Depth& operator=(const Depth&) = delete;
        ~Depth() { _recorder._depth = _before; }

    private:
        Recorder& _recorder;
        int _before;
    };

    static bool isA(Class kind, Class ancestor) {
        return kind && (kind == ancestor || isA(class_getSuperclass(kind), ancestor));
    }

    const Watched& find(SEL selector) const { return _watched.at(sel_getName(selector)); }

    std::map<std::string, Watched> _watched; // by selector
    std::vector<std::string> _lines;
    bool _isRecording = false;
    int _depth = 0;
};

} // namespace macos_tests
