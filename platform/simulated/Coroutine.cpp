#include "platform/simulated/Coroutine.hpp"

#include <utility>

namespace platform::simulated {

Coroutine::Coroutine(std::function<void()> body)
    : _body{std::move(body)}
    , _thread{[this] { run(); }} {}

Coroutine::~Coroutine() {
    if (!_hasEnded) {
        _isUnwinding = true;
        passTo(Turn::Body);
    }
    _thread.join();
}

void Coroutine::resume() {
    if (_hasEnded) {
        return;
    }
    passTo(Turn::Body);
    if (_escaped) {
        std::rethrow_exception(std::exchange(_escaped, nullptr));
    }
}

void Coroutine::yield() {
    passTo(Turn::Resumer);
    if (_isUnwinding) {
        throw Unwinding{};
    }
}

void Coroutine::run() {
    {
        std::unique_lock lock{_mutex};
        _turnPassed.wait(lock, [this] { return _turn == Turn::Body; });
    }
    if (!_isUnwinding) {
        try {
            _body();
        } catch (const Unwinding&) {
            // as wanted
        } catch (...) {
            _escaped = std::current_exception();
        }
    }
    _body = nullptr;
    _hasEnded = true;
    const std::scoped_lock lock{_mutex};
    _turn = Turn::Resumer;
    _turnPassed.notify_all();
}

void Coroutine::passTo(Turn other) {
    const Turn own = other == Turn::Body ? Turn::Resumer : Turn::Body;
    std::unique_lock lock{_mutex};
    _turn = other;
    _turnPassed.notify_all();
    _turnPassed.wait(lock, [&] { return _turn == own; });
}

} // namespace platform::simulated
