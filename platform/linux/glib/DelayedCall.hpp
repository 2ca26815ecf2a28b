#pragma once

// A function that the main context calls once, after a delay. The call is cancelled when its owner destroys this
// object.

#include <chrono>
#include <functional>

namespace platform::linux {

class DelayedCall {
public:
    using Function = std::function<void()>;

    DelayedCall() = default;
    ~DelayedCall() { cancel(); }
    DelayedCall(const DelayedCall&) = delete;
    DelayedCall& operator=(const DelayedCall&) = delete;

    /// Calls `function` that much later, and not the one that was still to be called. The function may start this
    /// object anew or destroy it. Whole seconds fall together with those of others, so that the process wakes once.
    void start(std::chrono::seconds delay, Function function);
    void start(std::chrono::milliseconds delay, Function function);

    /// Calls `function` in the next turn of the main context.
    void startSoon(Function function);

    void cancel();
    bool isPending() const { return _source != 0; }

private:
    static int run(void* self);

    Function _function;
    unsigned _source = 0; ///< GLib's number of the call that is pending; 0 for none.
};

} // namespace platform::linux
