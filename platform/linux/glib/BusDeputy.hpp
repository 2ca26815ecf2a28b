#pragma once

// What GLib's own thread says on a bus for an object, so that the main loop need not be woken and may be busy. That
// thread receives and sends every message in any case.

#include "platform/linux/glib/Handles.hpp"

#include <string>
#include <vector>

namespace platform::linux {

/// Answers questions for the properties of one interface at one object path.
class BusDeputy {
public:
    using Messages = std::vector<ObjectHandle<GDBusMessage>>;

    /// Leaves all questions to the main loop until it is told something.
    BusDeputy(GDBusConnection* bus, std::string path, std::string interface);
    ~BusDeputy(); ///< What it has not sent yet, it does not send.
    BusDeputy(const BusDeputy&) = delete;
    BusDeputy& operator=(const BusDeputy&) = delete;

    /// Answers with `properties` from now on, a dictionary of all that the object has, and sends `signals`. No
    /// answer of before comes after them.
    void tell(VariantHandle properties, Messages signals);

    /// Sends what it has not sent yet, and leaves all questions to the main loop as at first.
    void rest();

private:
    struct State;
    struct Source;

    static GDBusMessage* filter(GDBusConnection* bus, GDBusMessage* message, gboolean isIncoming, gpointer self);

    ObjectHandle<GDBusConnection> _bus;
    State* _state; ///< The filter owns it, since it may run once more after it was removed.
    unsigned _filter;
};

} // namespace platform::linux
