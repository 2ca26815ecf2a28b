#pragma once

// Owners of what GLib hands out. Each is a `std::unique_ptr` that releases its object in GLib's own way.

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
using TextHandle = std::unique_ptr<char, Release<g_free>>;
using TextsHandle = std::unique_ptr<char*, Release<g_strfreev>>;
using FolderHandle = std::unique_ptr<GDir, Release<g_dir_close>>;
using VariantHandle = std::unique_ptr<GVariant, Release<g_variant_unref>>;

/// Shares an object that has an owner already.
template <typename Object>
ObjectHandle<Object> shared(Object* object) {
    return ObjectHandle<Object>{static_cast<Object*>(g_object_ref(object))};
}

/// Takes a new variant over, or shares one that has an owner already.
inline VariantHandle owned(GVariant* variant) {
    return VariantHandle{variant ? g_variant_ref_sink(variant) : nullptr};
}

/// Owns the error that a function reports through a `GError**`, if it reports one.
class ErrorSlot {
public:
    ErrorSlot() = default;
    ~ErrorSlot() { g_clear_error(&_error); }
    ErrorSlot(const ErrorSlot&) = delete;
    ErrorSlot& operator=(const ErrorSlot&) = delete;

    GError** out() { return &_error; }
    explicit operator bool() const { return _error != nullptr; }
    const char* message() const { return _error ? _error->message : ""; }
    bool matches(GQuark domain, int code) const { return g_error_matches(_error, domain, code); }
    /// Whether a peer on a bus answered with the error, which can be any, even one of this side's.
    bool isFromOtherSide() const { return _error && g_dbus_error_is_remote_error(_error); }

private:
    GError* _error = nullptr;
};

/// A cancellable that is cancelled when its owner destroys it.
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
