#include "platform/linux/trayless/TraylessNotice.hpp"

#include <utility>

namespace platform::linux {
namespace {

constexpr unsigned secondsOfPatience = 3;
constexpr const char* lockScreen = "org.gnome.Shell.ScreenShield";
constexpr const char* lockScreenPath = "/org/gnome/ScreenSaver";
constexpr const char* lockScreenInterface = "org.gnome.ScreenSaver";

} // namespace

TraylessNotice::TraylessNotice(GDBusConnection* sessionBus, std::function<void()> appear,
                               std::function<void()> disappear, std::function<void()> open,
                               std::function<void(std::string_view)> pick,
                               std::function<void(const char*)> activationTokenCame)
    : _appear{std::move(appear)}
    , _disappear{std::move(disappear)}
    , _sessionBus{sessionBus}
    , _notification{sessionBus,
                    [open = std::move(open), pick = std::move(pick)](std::string_view key) {
                        key == "default" ? open() : pick(key);
                    },
                    std::move(activationTokenCame)} {
    const auto lockChanged = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                                gpointer self) {
        auto& notice = *static_cast<TraylessNotice*>(self);
        if (notice._isTrayMissing && !notice._isTold) {
            notice.wait();
        }
    };
    _lockSubscription = g_dbus_connection_signal_subscribe(sessionBus, lockScreen, lockScreenInterface,
                                                           "ActiveChanged", lockScreenPath, nullptr,
                                                           G_DBUS_SIGNAL_FLAGS_NONE, lockChanged, this, nullptr);
}

TraylessNotice::~TraylessNotice() {
    g_dbus_connection_signal_unsubscribe(_sessionBus, _lockSubscription);
    if (_patience != 0) {
        g_source_remove(_patience);
    }
}

void TraylessNotice::trayChanged(bool isPresent) {
    _isTrayMissing = !isPresent;
    if (_isTrayMissing) {
        wait();
        return;
    }
    if (_patience != 0) {
        g_source_remove(std::exchange(_patience, 0));
    }
    if (std::exchange(_isTold, false)) {
        _notification.withdraw();
        _disappear();
    }
}

void TraylessNotice::wait() {
    if (_patience != 0) {
        g_source_remove(_patience);
    }
    const auto isOver = [](gpointer self) -> gboolean {
        static_cast<TraylessNotice*>(self)->_patience = 0;
        static_cast<TraylessNotice*>(self)->tellUnlessLocked();
        return G_SOURCE_REMOVE;
    };
    _patience = g_timeout_add_seconds(secondsOfPatience, isOver, this);
}

void TraylessNotice::tellUnlessLocked() {
    const auto answered = [](GObject* bus, GAsyncResult* result, gpointer self) {
        ErrorSlot error;
        const VariantHandle answer{g_dbus_connection_call_finish(G_DBUS_CONNECTION(bus), result, &error)};
        if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) {
            return;
        }
        gboolean isLocked = FALSE; // and not where nobody answers
        if (answer) {
            g_variant_get(answer.get(), "(b)", &isLocked);
        }
        auto& notice = *static_cast<TraylessNotice*>(self);
        if (!isLocked && notice._isTrayMissing && !notice._isTold) {
            notice.tell();
        }
    };
    g_dbus_connection_call(_sessionBus, lockScreen, lockScreenPath, lockScreenInterface, "GetActive", nullptr,
                           G_VARIANT_TYPE("(b)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, _cancelled.get(), answered,
                           this);
}

void TraylessNotice::tell() {
    _isTold = true;
    _notification.show(
        "Marvelode Timer is running",
        "This desktop has no place for its icon. A small window shows the time left; start the timer "
        "once more to bring that window back.",
        {{"default", "Show the timer"},
         {"Restart timer", "Restart timer"},
         {"Settings", "Settings"},
         {"Quit", "Quit"}});
    _appear();
}

} // namespace platform::linux
