#include "platform/linux/TraylessNotice.hpp"

#include <utility>

namespace platform::freedesktop {
namespace {

constexpr unsigned secondsOfPatience = 3;

} // namespace

TraylessNotice::TraylessNotice(GDBusConnection* sessionBus, std::function<void()> appear,
                               std::function<void()> disappear, std::function<void()> open,
                               std::function<void(std::string_view)> pick,
                               std::function<void(const char*)> activationTokenCame)
    : _appear{std::move(appear)}
    , _disappear{std::move(disappear)}
    , _notification{sessionBus,
                    [open = std::move(open), pick = std::move(pick)](std::string_view key) {
                        key == "default" ? open() : pick(key);
                    },
                    std::move(activationTokenCame)} {}

TraylessNotice::~TraylessNotice() {
    if (_patience != 0) {
        g_source_remove(_patience);
    }
}

void TraylessNotice::trayChanged(bool isPresent) {
    if (_patience != 0) {
        g_source_remove(std::exchange(_patience, 0));
    }
    if (!isPresent) {
        const auto tell = [](gpointer self) -> gboolean {
            static_cast<TraylessNotice*>(self)->_patience = 0;
            static_cast<TraylessNotice*>(self)->tell();
            return G_SOURCE_REMOVE;
        };
        _patience = g_timeout_add_seconds(secondsOfPatience, tell, this);
    } else if (std::exchange(_isTold, false)) {
        _notification.withdraw();
        _disappear();
    }
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

} // namespace platform::freedesktop
