#pragma once

// Ownership of Objective-C objects from C++, by hand-written retain and release in one place. A `Retained` owns one
// reference, as a `std::unique_ptr` owns its object.

#import <Foundation/Foundation.h>

#include <utility>

namespace macos {

/// One reference to an Objective-C object, given back at the end of its life.
template <typename Object>
class Retained {
public:
    Retained() = default;

    /// Takes over the reference that `alloc`, `copy` or `retain` gave.
    explicit Retained(Object* owned)
        : _object{owned} {}

    Retained(Retained&& other) noexcept
        : _object{std::exchange(other._object, nil)} {}
    Retained& operator=(Retained other) noexcept {
        std::swap(_object, other._object);
        return *this;
    }
    ~Retained() { [_object release]; }

    /// The object, still owned by this; nil if there is none.
    Object* get() const { return _object; }

private:
    Object* _object = nil;
};

} // namespace macos
