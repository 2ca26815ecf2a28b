#include "platform/linux/glib/DelayedCall.hpp"

#include <glib.h>

#include <utility>

namespace platform::linux {

void DelayedCall::start(std::chrono::seconds delay, Function function) {
    cancel();
    _function = std::move(function);
    _source = g_timeout_add_seconds(static_cast<guint>(delay.count()), run, this);
}

void DelayedCall::start(std::chrono::milliseconds delay, Function function) {
    cancel();
    _function = std::move(function);
    _source = g_timeout_add(static_cast<guint>(delay.count()), run, this);
}

void DelayedCall::startSoon(Function function) {
    cancel();
    _function = std::move(function);
    _source = g_idle_add_full(G_PRIORITY_DEFAULT, run, this, nullptr);
}

void DelayedCall::cancel() {
    if (isPending()) {
        g_source_remove(std::exchange(_source, 0));
        _function = nullptr;
    }
}

int DelayedCall::run(void* self) {
    auto& call = *static_cast<DelayedCall*>(self);
    call._source = 0;
    std::exchange(call._function, nullptr)(); // `call` may be gone after that
    return G_SOURCE_REMOVE;
}

} // namespace platform::linux
