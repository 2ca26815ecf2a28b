#include "platform/linux/glib/BusCall.hpp"

#include <utility>

namespace platform::linux {

void BusCall::start(GDBusConnection* bus, const BusMethod& method, GVariant* arguments, const char* answerType,
                    Answered answered, std::chrono::milliseconds patience) {
    _answered = std::move(answered);
    _pending.emplace();
    g_dbus_connection_call(bus, method.service, method.object, method.interface, method.name, arguments,
                           answerType ? G_VARIANT_TYPE(answerType) : nullptr,
                           method.startsService ? G_DBUS_CALL_FLAGS_NONE : G_DBUS_CALL_FLAGS_NO_AUTO_START,
                           static_cast<int>(patience.count()), _pending->get(), finish, this);
}

/// Called for a cancelled call as well, whose object may be gone.
void BusCall::finish(GObject* bus, GAsyncResult* result, void* self) {
    ErrorSlot error;
    VariantHandle answer{g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, error.out())};
    if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED) && !error.isFromOtherSide()) {
        return;
    }
    auto& call = *static_cast<BusCall*>(self);
    call._pending.reset();
    std::exchange(call._answered, nullptr)(std::move(answer), error); // `call` may be gone after that
}

} // namespace platform::linux
