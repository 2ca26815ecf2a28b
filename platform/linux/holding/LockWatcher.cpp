#include "platform/linux/holding/LockWatcher.hpp"

#include "platform/linux/holding/BusQuestions.hpp"

#include <utility>

namespace platform::linux {
namespace {

constexpr const char* loginManager = "org.freedesktop.login1";
constexpr const char* propertiesInterface = "org.freedesktop.DBus.Properties";

} // namespace

LockWatcher::LockWatcher(GDBusConnection* sessionBus, std::function<TimeInterval()> secondsSinceBoot,
                         std::function<void(TimeInterval)> unlocked)
    : _sessionBus{shared(sessionBus)}
    , _secondsSinceBoot{std::move(secondsSinceBoot)}
    , _unlocked{std::move(unlocked)} {
    for (const BusQuestion& screenSaver : screenSavers()) {
        _lockers.push_back({*this, screenSaver.method.service});
    }
    for (Locker& locker : _lockers) {
        listenTo(locker);
    }
}

LockWatcher::~LockWatcher() {
    for (const Locker& locker : _lockers) {
        g_dbus_connection_signal_unsubscribe(_sessionBus.get(), locker.change);
        g_dbus_connection_signal_unsubscribe(_sessionBus.get(), locker.owner);
    }
    if (_systemBus) {
        g_dbus_connection_signal_unsubscribe(_systemBus.get(), _hint);
    }
}

/// One that has gone locks nothing any more.
void LockWatcher::listenTo(Locker& locker) {
    const auto changed = [](GDBusConnection*, const char*, const char*, const char*, const char*,
                            GVariant* arguments, gpointer data) {
        const auto& self = *static_cast<Locker*>(data);
        self.watcher.tell(self.name, saysYes(arguments));
    };
    const auto ownerChanged = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                                 gpointer data) {
        const auto& self = *static_cast<Locker*>(data);
        self.watcher.tell(self.name, false);
    };
    const char* const name = locker.name.c_str();
    locker.change =
        g_dbus_connection_signal_subscribe(_sessionBus.get(), name, name, "ActiveChanged", nullptr, nullptr,
                                           G_DBUS_SIGNAL_FLAGS_NONE, changed, &locker, nullptr);
    locker.owner = g_dbus_connection_signal_subscribe(
        _sessionBus.get(), "org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
        "/org/freedesktop/DBus", name, G_DBUS_SIGNAL_FLAGS_NONE, ownerChanged, &locker, nullptr);
}

void LockWatcher::listenTo(GDBusConnection* systemBus) {
    if (_systemBus || !systemBus) {
        return;
    }
    _systemBus = shared(systemBus);
    // The signal comes from any session of the machine, so each time it is asked about this one.
    const auto changed = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                            gpointer self) { static_cast<LockWatcher*>(self)->askLoginManager(); };
    _hint = g_dbus_connection_signal_subscribe(systemBus, loginManager, propertiesInterface, "PropertiesChanged",
                                               nullptr, "org.freedesktop.login1.Session", G_DBUS_SIGNAL_FLAGS_NONE,
                                               changed, this, nullptr);
}

void LockWatcher::askLoginManager() {
    const BusQuestion& hint = busQuestionsFor(DesktopValues::Cause::Locked).front();
    _question.start(
        _systemBus.get(), hint.method, argumentsOf(hint), nullptr,
        [this](const VariantHandle& answer, const ErrorSlot&) { tell(loginManager, saysYes(answer.get())); });
}

void LockWatcher::tell(const std::string& locker, bool isLocked) {
    const bool wasLocked = !_lockedBy.empty();
    if (isLocked) {
        _lockedBy.insert(locker);
    } else {
        _lockedBy.erase(locker);
    }
    if (isLocked && !wasLocked) {
        _since = _secondsSinceBoot();
    } else if (wasLocked && _lockedBy.empty()) {
        _unlocked(_secondsSinceBoot() - _since);
    }
}

} // namespace platform::linux
