#pragma once

// Owners for what GLib hands out: each gives back what it holds when it goes. They behave like `std::unique_ptr`,
// which they are.

#include <gio/gio.h>

#include <memory>

namespace platform::linux {

template <auto release>
struct Release {
    template <typename Object>
    void operator()(Object* object) const {
        release(object);
    }
};

template <typename Object>
using ObjectHandle = std::unique_ptr<Object, Release<g_object_unref>>;
using ErrorHandle = std::unique_ptr<GError, Release<g_error_free>>;
using TextHandle = std::unique_ptr<char, Release<g_free>>;
using VariantHandle = std::unique_ptr<GVariant, Release<g_variant_unref>>;

/// Takes over a variant that nobody owns yet, or shares one that somebody does.
inline VariantHandle owned(GVariant* variant) {
    return VariantHandle{variant ? g_variant_ref_sink(variant) : nullptr};
}

/// Passed to functions that report an error through a `GError**`; holds what they reported.
class ErrorSlot {
public:
    ErrorSlot() = default;
    ~ErrorSlot() { g_clear_error(&_error); }
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;

    GError** operator&() { return &_error; }
    explicit operator bool() const { return _error != nullptr; }
    const char* message() const { return _error ? _error->message : ""; }
    bool matches(GQuark domain, int code) const { return g_error_matches(_error, domain, code); }

private:
    GError* _error = nullptr;
};

/// A cancellable that is cancelled when its owner goes: answers that are still under way are dropped.
class CancelledAtEnd {
public:
    CancelledAtEnd() = default;
    ~CancelledAtEnd() { g_cancellable_cancel(_cancellable.get()); }
    CancelledAtEnd(const CancelledAtEnd&) = delete;
    CancelledAtEnd& operator=(const CancelledAtEnd&) = delete;

    GCancellable* get() const { return _cancellable.get(); }

private:
    ObjectHandle<GCancellable> _cancellable{g_cancellable_new()};
};

} // namespace platform::linux
