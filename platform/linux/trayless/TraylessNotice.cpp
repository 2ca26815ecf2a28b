#include "platform/linux/trayless/TraylessNotice.hpp"

#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

constexpr std::chrono::seconds patience{3};
constexpr const char* lockScreen = "org.gnome.Shell.ScreenShield";
constexpr const char* lockScreenPath = "/org/gnome/ScreenSaver";
constexpr const char* lockScreenInterface = "org.gnome.ScreenSaver";

} // namespace

TraylessNotice::TraylessNotice(GDBusConnection* sessionBus, StandInWindow& window,
                               std::function<void(std::string_view)> pick, ActivationToken& activationToken)
    : _window{window}
    , _sessionBus{shared(sessionBus)}
    , _notification{
          sessionBus,
          [&window, pick = std::move(pick)](std::string_view key) { key == "default" ? window.open() : pick(key); },
          activationToken} {}

TraylessNotice::~TraylessNotice() {
    if (_lockSubscription != 0) {
        g_dbus_connection_signal_unsubscribe(_sessionBus.get(), _lockSubscription);
    }
}

void TraylessNotice::trayChanged(bool isPresent) {
    _isTrayMissing = !isPresent;
    if (_isTrayMissing) {
        wait();
        return;
    }
    _patience.cancel();
    if (std::exchange(_isTold, false)) {
        _notification.withdraw();
        _window.close();
    }
}

void TraylessNotice::wait() {
    if (!_patience.isPending()) { // however often the lock changes
        _patience.start(patience, [this] { tellUnlessLocked(); });
    }
}

/// Only once a panel is missing, as it rarely is.
void TraylessNotice::listenToLock() {
    const auto lockChanged = [](GDBusConnection*, const char*, const char*, const char*, const char*, GVariant*,
                                gpointer self) {
        auto& notice = *static_cast<TraylessNotice*>(self);
        if (notice._isTrayMissing && !notice._isTold) {
            notice.wait();
        }
    };
    _lockSubscription = g_dbus_connection_signal_subscribe(_sessionBus.get(), lockScreen, lockScreenInterface,
                                                           "ActiveChanged", lockScreenPath, nullptr,
                                                           G_DBUS_SIGNAL_FLAGS_NONE, lockChanged, this, nullptr);
}

void TraylessNotice::tellUnlessLocked() {
    if (_lockSubscription == 0) {
        listenToLock();
    }
    const BusMethod question{lockScreen, lockScreenPath, lockScreenInterface, "GetActive"};
    _lockQuestion.start(_sessionBus.get(), question, nullptr, "(b)",
                        [this](const VariantHandle& answer, const ErrorSlot&) {
                            gboolean isLocked = FALSE; // and not where there is no answer
                            if (answer) {
                                g_variant_get(answer.get(), "(b)", &isLocked);
                            }
                            if (!isLocked && _isTrayMissing && !_isTold) {
                                tell();
                            }
                        });
}

void TraylessNotice::tell() {
    _isTold = true;
    std::vector<Notification::Action> actions{{"default", "Show the timer"}};
    for (const std::string& entry : _entries) {
        actions.push_back({entry, entry});
    }
    _notification.show(
        "Marvelode Timer is running",
        "This desktop has no place for its icon. A small window shows the time left; start the timer "
        "once more to bring that window back.",
        actions);
    _window.appear();
}

} // namespace platform::linux
