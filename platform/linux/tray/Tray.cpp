#include "platform/linux/tray/Tray.hpp"

#include "platform/Text.hpp"
#include "platform/linux/tray/TrayHost.hpp"

#include <algorithm>
#include <utility>

namespace platform::linux {
namespace {

constexpr const char* watcher = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr std::chrono::seconds firstRetryDelay{3};
constexpr std::chrono::seconds longestRetryDelay{60};
constexpr std::chrono::seconds pauseBetweenQuestions{1};

/// Whether that answer to a question for a property is a false one.
bool deniesPanel(const VariantHandle& answer) {
    const VariantHandle box{answer ? g_variant_get_child_value(answer.get(), 0) : nullptr};
    const VariantHandle value{box ? g_variant_get_variant(box.get()) : nullptr};
    return value && g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) &&
           !g_variant_get_boolean(value.get());
}

} // namespace

Tray::Tray(GDBusConnection* bus, std::function<void(std::string_view processName)> appeared,
           std::function<void(bool)> presenceChanged, ErrorLog& errorLog)
    : _bus{shared(bus)}
    , _appeared{std::move(appeared)}
    , _presenceChanged{std::move(presenceChanged)}
    , _errorLog{errorLog} {
    const auto nameAppeared = [](GDBusConnection*, const char*, const char* owner, gpointer self) {
        static_cast<Tray*>(self)->watcherAppeared(owner);
    };
    const auto nameVanished = [](GDBusConnection*, const char*, gpointer self) {
        static_cast<Tray*>(self)->watcherVanished();
    };
    const auto panelsChanged = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                                  gpointer self) { static_cast<Tray*>(self)->panelsChanged(); };
    const auto listenFor = [&](const char* signal) {
        return g_dbus_connection_signal_subscribe(bus, watcher, watcher, signal, watcherPath, nullptr,
                                                  G_DBUS_SIGNAL_FLAGS_NONE, panelsChanged, this, nullptr);
    };
    _panelSubscriptions = {listenFor("StatusNotifierHostRegistered"), listenFor("StatusNotifierHostUnregistered")};
    _watch = g_bus_watch_name_on_connection(bus, watcher, G_BUS_NAME_WATCHER_FLAGS_NONE, nameAppeared, nameVanished,
                                            this, nullptr);
}

Tray::~Tray() {
    for (const unsigned subscription : _panelSubscriptions) {
        g_dbus_connection_signal_unsubscribe(_bus.get(), subscription);
    }
    g_bus_unwatch_name(_watch);
}

void Tray::watcherAppeared(const char* owner) {
    _retryDelay = firstRetryDelay;
    const BusMethod question{"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                             "GetConnectionUnixProcessID"};
    _processQuestion.start(_bus.get(), question, g_variant_new("(s)", owner), "(u)",
                           [this](const VariantHandle& answer, const ErrorSlot&) {
                               unsigned process = 0;
                               if (answer) {
                                   g_variant_get(answer.get(), "(u)", &process);
                               }
                               _appeared(processName(process));
                               registerItem();
                           });
}

void Tray::watcherVanished() {
    _processQuestion.cancel();
    _registration.cancel();
    _nextRegistration.cancel();
    _panelQuestion.cancel();
    _nextPanelQuestion.cancel();
    _isRegistered = false;
    setPresence(false);
}

/// Registers under the bus's own name for us: of the ways there are, the one that every panel takes.
void Tray::registerItem() {
    _nextRegistration.cancel();
    const BusMethod method{watcher, watcherPath, watcher, "RegisterStatusNotifierItem"};
    _registration.start(_bus.get(), method, g_variant_new("(s)", g_dbus_connection_get_unique_name(_bus.get())),
                        nullptr, [this](const VariantHandle& answer, const ErrorSlot& error) {
                            if (answer) {
                                _isRegistered = true;
                                askForPanel();
                            } else {
                                registrationFailed(error.message());
                            }
                        });
}

void Tray::registrationFailed(std::string_view reason) {
    if (_retryDelay == firstRetryDelay) {
        _errorLog.add("The panel refused the status item: " + std::string{reason});
    }
    setPresence(false);
    _nextRegistration.start(_retryDelay, [this] { registerItem(); });
    _retryDelay = std::min(2 * _retryDelay, longestRetryDelay);
}

/// A panel has registered with the watcher or left it. However often they do, there is one question at a time, and
/// one in a second.
void Tray::panelsChanged() {
    if (_panelQuestion.isPending()) {
        _isAnswerOutdated = true;
    } else if (_isRegistered && !_nextPanelQuestion.isPending()) {
        askForPanel();
    } else if (_nextRegistration.isPending()) {
        registerItem();
    }
}

/// The watcher may run without any panel that shows what it collects. One that does not tell is taken to have one.
void Tray::askForPanel() {
    _isAnswerOutdated = false;
    const BusMethod question{watcher, watcherPath, "org.freedesktop.DBus.Properties", "Get"};
    _panelQuestion.start(_bus.get(), question, g_variant_new("(ss)", watcher, "IsStatusNotifierHostRegistered"),
                         "(v)", [this](const VariantHandle& answer, const ErrorSlot&) {
                             setPresence(!deniesPanel(answer));
                             if (_isAnswerOutdated) {
                                 _nextPanelQuestion.start(pauseBetweenQuestions, [this] { askForPanel(); });
                             }
                         });
}

void Tray::setPresence(bool isPresent) {
    if (_isPresent != isPresent) {
        _isPresent = isPresent;
        _presenceChanged(isPresent);
    }
}

} // namespace platform::linux
