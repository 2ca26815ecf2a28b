#include "platform/linux/holding/ReminderGate.hpp"

#include <utility>

namespace platform::linux {

ReminderGate::ReminderGate(Question ask, std::function<void()> iterate, std::function<bool()> isBreakDue)
    : _ask{std::move(ask)}
    , _iterate{std::move(iterate)}
    , _isBreakDue{std::move(isBreakDue)} {}

bool ReminderGate::sound(std::function<bool()> play) {
    ask();
    if (_isAsking) {
        _sound = std::move(play);
        return true;
    }
    return _answer.empty() && play();
}

bool ReminderGate::admitsWindow() {
    look();
    ask();
    const bool waits = _isAsking;
    while (_isAsking && !_isClosed) {
        _iterate();
    }
    const bool isTooLate = waits && !_isBreakDue();
    return _answer.empty() && !_isClosed && !isTooLate;
}

void ReminderGate::close() {
    _isClosed = true;
    _sound = nullptr;
}

void ReminderGate::look() {
    const bool wasDue = std::exchange(_isDue, _isBreakDue());
    if (!_isDue) {
        _heldBecause.clear();
    }
    if (wasDue && !_isDue) { // it was not the cycle that went on by itself, without a window
        _sound = nullptr;
    }
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
    _answer = _heldBecause = reason;
    look();
    const auto sound = std::exchange(_sound, nullptr);
    if (sound && reason.empty()) {
        sound();
    }
}

} // namespace platform::linux
