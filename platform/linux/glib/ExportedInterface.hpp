#pragma once

// One D-Bus interface at one object path, answered by two functions. It is on the bus as long as this object
// exists.

#include "platform/linux/glib/BusDeputy.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::linux {

class ExportedInterface {
public:
    /// Returns the tuple of the method's results, or null if the arguments make no sense.
    using Method = std::function<VariantHandle(std::string_view name, GVariant* arguments)>;
    /// The same for answers that may take their time. It owns `call` and must answer it once.
    using Call = std::function<void(std::string_view name, GVariant* arguments, GDBusMethodInvocation* call)>;
    /// Returns the property's value, or null if the object does not have it at present.
    using Property = std::function<VariantHandle(std::string_view name)>;

    struct Signal {
        const char* name = nullptr;
        VariantHandle arguments; ///< A tuple, or null for none.
    };

    /// `description` is a D-Bus introspection document with exactly one interface, well-formed.
    ExportedInterface(GDBusConnection* bus, std::string path, const char* description, Call call,
                      Property property);
    ExportedInterface(GDBusConnection* bus, std::string path, const char* description, Method method,
                      Property property);
    ~ExportedInterface();
    ExportedInterface(const ExportedInterface&) = delete;
    ExportedInterface& operator=(const ExportedInterface&) = delete;

    /// Sends a signal of the interface to all that listen; `arguments` is a tuple, or null for none.
    void emit(const char* signal, GVariant* arguments = nullptr) const;

    /// Asks for all properties now, and has GLib's own thread answer with these values from now on, so that the
    /// main loop is not woken; to be called whenever any of them has changed. Then sends the signals that tell of
    /// that.
    void delegate(const std::vector<Signal>& signals);

    /// Asks for each property when it is asked for, as at first, and sends what was not sent yet. To be called some
    /// time before `delegate` as well: what GLib's thread receives in between makes it known.
    void answerInPerson();

    /// Tells all that listen the new values of properties, a dictionary of names and values.
    void announce(GVariant* changed) const;

private:
    using Description = std::unique_ptr<GDBusNodeInfo, Release<g_dbus_node_info_unref>>;

    ObjectHandle<GDBusConnection> _bus;
    std::string _path;
    Description _description;
    Call _call;
    Property _property;
    unsigned _registration;
    std::optional<BusDeputy> _deputy;
};

} // namespace platform::linux
