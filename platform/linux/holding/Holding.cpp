#include "platform/linux/holding/Holding.hpp"

#include <utility>

namespace platform::linux {

Holding::Holding(DesktopSettings& settings, HoldQuestion& question, std::function<void()> iterate,
                 std::function<TimeInterval()> secondsSinceBoot)
    : gate{[this](ReminderGate::Answered answered) { ask(std::move(answered)); }, std::move(iterate)}
    , request{std::move(secondsSinceBoot)}
    , _settings{settings}
    , _question{question} {}

std::string Holding::reason() {
    std::string requested = request.reason();
    return requested.empty() && !_wasRequested ? gate.reason() : requested;
}

void Holding::ask(ReminderGate::Answered answered) {
    const std::string requested = request.reason();
    _wasRequested = !requested.empty();
    if (_wasRequested) {
        answered(requested);
    } else {
        _question.ask(_settings.current(), std::move(answered));
    }
}

} // namespace platform::linux
