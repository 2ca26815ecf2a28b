#include "platform/linux/holding/ReminderGate.hpp"

#include <utility>

namespace platform::linux {

ReminderGate::ReminderGate(Question ask, std::function<void()> iterate)
    : _ask{std::move(ask)}
    , _iterate{std::move(iterate)} {}

bool ReminderGate::sound(std::function<bool()> play) {
    ask();
    if (_isAsking) {
        _sound = std::move(play);
        return true;
    }
    return _answer.empty() && play();
}

bool ReminderGate::admitsWindow() {
    ask();
    while (_isAsking && !_isClosed) {
        _iterate();
    }
    _heldBecause = _answer;
    return _answer.empty() && !_isClosed;
}

void ReminderGate::close() {
    _isClosed = true;
    _sound = nullptr;
}

/// Sound and window of one reminder share a question.
void ReminderGate::ask() {
    if (!_isAsking) {
        _isAsking = true;
        _ask([this](const std::string& reason) { answered(reason); });
    }
}

void ReminderGate::answered(const std::string& reason) {
    _isAsking = false;
    _answer = reason;
    const auto sound = std::exchange(_sound, nullptr);
    if (sound && reason.empty()) {
        sound();
    }
}

} // namespace platform::linux
