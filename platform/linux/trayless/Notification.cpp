#include "platform/linux/trayless/Notification.hpp"

#include "platform/linux/glib/Delivery.hpp"

#include <utility>

namespace platform::linux {
namespace {

constexpr const char* service = "org.freedesktop.Notifications";
constexpr const char* object = "/org/freedesktop/Notifications";
constexpr std::chrono::milliseconds timeToStartTheService{120'000};

} // namespace

Notification::Notification(GDBusConnection* sessionBus, std::function<void(std::string_view)> chosen,
                           ActivationToken& activationToken)
    : _sessionBus{shared(sessionBus)}
    , _chosen{std::move(chosen)}
    , _activationToken{activationToken} {}

Notification::~Notification() {
    if (_id != 0) {
        withdraw();
        awaitDelivery(_sessionBus.get()); // the program ends with this, as a rule
    }
    for (const unsigned subscription : _subscriptions) {
        g_dbus_connection_signal_unsubscribe(_sessionBus.get(), subscription);
    }
}

/// Not before there is a message: a panel is rarely missing, and the bus is busy enough while the program starts.
void Notification::listen() {
    const auto userActed = [](GDBusConnection*, const char*, const char*, const char*, const char* signal,
                              GVariant* parameters, gpointer self) {
        auto& notification = *static_cast<Notification*>(self);
        if (!g_variant_is_of_type(parameters, G_VARIANT_TYPE("(us)"))) {
            return;
        }
        guint32 id = 0;
        const char* keyOrToken = nullptr;
        g_variant_get(parameters, "(u&s)", &id, &keyOrToken);
        if (id == 0 || id != notification._id) {
            return;
        }
        if (std::string_view{signal} == "ActivationToken") {
            notification._activationToken.keep(keyOrToken);
        } else {
            notification._chosen(keyOrToken);
        }
    };
    // Afterwards the number may become that of somebody else's message.
    const auto closed = [](GDBusConnection*, const char*, const char*, const char*, const char*,
                           GVariant* parameters, gpointer self) {
        guint32 id = 0;
        if (g_variant_is_of_type(parameters, G_VARIANT_TYPE("(uu)"))) {
            g_variant_get(parameters, "(uu)", &id, nullptr);
        }
        if (id == static_cast<Notification*>(self)->_id) {
            static_cast<Notification*>(self)->_id = 0;
        }
    };
    const auto subscribe = [this](const char* signal, GDBusSignalCallback callback) {
        return g_dbus_connection_signal_subscribe(_sessionBus.get(), service, service, signal, object, nullptr,
                                                  G_DBUS_SIGNAL_FLAGS_NONE, callback, this, nullptr);
    };
    // The next service begins to number anew.
    const auto ownerChanged = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                                 gpointer self) { static_cast<Notification*>(self)->_id = 0; };
    const unsigned owner = g_dbus_connection_signal_subscribe(
        _sessionBus.get(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
        "/org/freedesktop/DBus", service, G_DBUS_SIGNAL_FLAGS_NONE, ownerChanged, this, nullptr);
    _subscriptions = {owner, subscribe("ActionInvoked", userActed), subscribe("ActivationToken", userActed),
                      subscribe("NotificationClosed", closed)};
}

void Notification::show(const std::string& summary, const std::string& body, const std::vector<Action>& actions) {
    if (_subscriptions.empty()) {
        listen();
    }
    _wanted = {summary, body, actions};
    _isOutdated = _showing.isPending(); // its number has to be known before it can be replaced
    if (!_isOutdated) {
        send();
    }
}

void Notification::send() {
    GVariantBuilder keysAndLabels;
    g_variant_builder_init(&keysAndLabels, G_VARIANT_TYPE("as"));
    for (const Action& action : _wanted->actions) {
        g_variant_builder_add(&keysAndLabels, "s", action.key.c_str());
        g_variant_builder_add(&keysAndLabels, "s", action.label.c_str());
    }
    GVariantBuilder hints;
    g_variant_builder_init(&hints, G_VARIANT_TYPE("a{sv}"));
    g_variant_builder_add(&hints, "{sv}", "desktop-entry", g_variant_new_string("org.marvelode.Timer"));
    constexpr int untilTheDesktopDecides = -1;
    GVariant* const message =
        g_variant_new("(susssasa{sv}i)", "Marvelode Timer", _id, "org.marvelode.Timer", _wanted->summary.c_str(),
                      _wanted->body.c_str(), &keysAndLabels, &hints, untilTheDesktopDecides);
    _isOutdated = false;
    _showing.start(
        _sessionBus.get(), {service, object, service, "Notify", true}, message, "(u)",
        [this](const VariantHandle& answer, const ErrorSlot&) { sent(answer); }, timeToStartTheService);
}

void Notification::sent(const VariantHandle& answer) {
    if (answer) {
        g_variant_get(answer.get(), "(u)", &_id);
    }
    if (!_wanted) {
        withdraw();
    } else if (_isOutdated) {
        send();
    }
}

void Notification::withdraw() {
    _wanted.reset(); // if its number is not known yet, it is withdrawn as soon as that comes
    if (_id == 0) {
        return;
    }
    g_dbus_connection_call(_sessionBus.get(), service, object, service, "CloseNotification",
                           g_variant_new("(u)", _id), nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr,
                           nullptr, nullptr);
    _id = 0;
}

} // namespace platform::linux
