#pragma once

// A function with a stack of its own, which runs only while its owner waits for it. It lives on a thread, but
// exactly one of the two threads runs at any time, so neither needs a lock for what both of them touch.

#include <condition_variable>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>

namespace platform::simulated {

class Coroutine {
public:
    /// Takes over `body`, which begins with the first `resume()`.
    explicit Coroutine(std::function<void()> body);

    /// Unwinds the body's stack if it has not ended: only its destructors run.
    ~Coroutine();

    Coroutine(const Coroutine&) = delete;
    Coroutine& operator=(const Coroutine&) = delete;

    /// Runs the body until it yields or ends; throws what escapes from it. Does nothing once it has ended.
    void resume();

    /// For the body: makes `resume()` return, and returns when that is called again.
    void yield();

    bool hasEnded() const { return _hasEnded; }

private:
    struct Unwinding {};
    enum class Turn { Resumer, Body };

    void run();
    void passTo(Turn other);

    std::function<void()> _body;
    bool _isUnwinding = false;
    bool _hasEnded = false;
    std::exception_ptr _escaped;

    std::mutex _mutex; // guards the turn; everything else belongs to the thread whose turn it is
    std::condition_variable _turnPassed;
    Turn _turn = Turn::Resumer;
    std::thread _thread;
};

} // namespace platform::simulated
