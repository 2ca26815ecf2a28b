#include "platform/linux/holding/RestartAfterLock.hpp"

#include <utility>

namespace platform::linux {

RestartAfterLock::RestartAfterLock(GDBusConnection* sessionBus, std::function<GDBusConnection*()> systemBus,
                                   DesktopSettings& settings, std::function<TimeInterval()> secondsSinceBoot,
                                   std::function<void()> restart)
    : _sessionBus{shared(sessionBus)}
    , _systemBus{std::move(systemBus)}
    , _settings{settings}
    , _secondsSinceBoot{std::move(secondsSinceBoot)}
    , _restart{std::move(restart)} {}

void RestartAfterLock::look() {
    if (!_settings.current().restartAfterLocked) {
        _watcher.reset();
        return;
    }
    if (!_watcher) {
        _watcher.emplace(_sessionBus.get(), _secondsSinceBoot,
                         [this](TimeInterval wasLocked) { unlocked(wasLocked); });
    }
    _watcher->listenTo(_systemBus());
}

void RestartAfterLock::unlocked(TimeInterval wasLocked) {
    const auto least = _settings.current().restartAfterLocked;
    if (least && wasLocked >= static_cast<TimeInterval>(least->count())) {
        _restart();
    }
}

} // namespace platform::linux
