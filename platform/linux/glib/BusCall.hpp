#pragma once

// One call of a D-Bus method whose answer comes later, in the main context. When its owner destroys this object,
// the answer is dropped.

#include "platform/linux/glib/Handles.hpp"

#include <chrono>
#include <functional>
#include <optional>

namespace platform::linux {

/// Where a method is found on a bus. All texts are literals.
struct BusMethod {
    const char* service = nullptr;
    const char* object = nullptr;
    const char* interface = nullptr;
    const char* name = nullptr;
    bool startsService = false; ///< The bus starts a service that does not run, if it can.
};

class BusCall {
public:
    /// `answer` is the tuple of results; it is null if the call failed, and only then `error` says why.
    using Answered = std::function<void(VariantHandle answer, const ErrorSlot& error)>;

    /// Far more than any service needs for its answer, even on a machine that is busy to the utmost.
    static constexpr std::chrono::milliseconds usualPatience{10'000};

    /// Calls `method` and drops the answer to the call before. `arguments` is a tuple, or null for none. The call
    /// fails if no tuple of the type `answerType` (any, if null) comes within `patience`. `answered` may start this
    /// object anew or destroy it.
    void start(GDBusConnection* bus, const BusMethod& method, GVariant* arguments, const char* answerType,
               Answered answered, std::chrono::milliseconds patience = usualPatience);

    /// Drops the answer.
    void cancel() {
        _pending.reset();
        _answered = nullptr;
    }

    bool isPending() const { return _pending.has_value(); }

private:
    static void finish(GObject* bus, GAsyncResult* result, void* self);

    Answered _answered;
    std::optional<CancelledAtEnd> _pending;
};

} // namespace platform::linux
