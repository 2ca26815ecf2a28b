#include "platform/linux/holding/Holding.hpp"

#include <utility>

namespace platform::linux {

Holding::Holding(DesktopSettings& settings, HoldQuestion& question, std::function<void()> iterate,
                 std::function<bool()> isBreakDue, std::function<TimeInterval()> secondsSinceBoot)
    : gate{[this](ReminderGate::Answered answered) { ask(std::move(answered)); }, std::move(iterate),
           std::move(isBreakDue)}
    , request{std::move(secondsSinceBoot)}
    , _settings{settings}
    , _question{question} {}

const std::string& Holding::reason() {
    const std::string& requested = request.reason();
    return requested.empty() && !_wasRequested ? gate.reason() : requested;
}

void Holding::ask(ReminderGate::Answered answered) {
    if (!request.reason().empty()) {
        answer(answered, {});
    } else {
        _question.ask(_settings.current(), [this, answered = std::move(answered)](const std::string& cause) {
            answer(answered, cause);
        });
    }
}

/// A request is ahead of every cause, even one that came while they were asked for.
void Holding::answer(const ReminderGate::Answered& answered, const std::string& cause) {
    const std::string requested = request.reason();
    _wasRequested = !requested.empty();
    answered(_wasRequested ? requested : cause);
}

} // namespace platform::linux
