#pragma once

// One run of the program that shows windows, and the socket that leads to it. It is started by the constructor and
// has certainly ended, leaving no zombie, when the destructor returns. If its first window is not on the screen
// after half a minute, it is given up: nobody must wait for an answer to what cannot be seen.

#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/window/Protocol.hpp"

#include <deque>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform::linux {

class WindowProcess {
public:
    /// Starts the program at `path`, and reads what it says whenever the calling thread's main context is iterated.
    /// If it cannot start, or goes away before it is told to, `errorLog` learns why. `somethingHappened` is called
    /// whenever there is an event to take or the program has gone; it must leave this object alone. The desktop
    /// gives the first window the keyboard for `activationToken`, which it handed out; it may be empty.
    WindowProcess(
        const std::filesystem::path& path, ErrorLog& errorLog, std::function<void()> somethingHappened = [] {},
        const std::string& activationToken = {});

    /// Lets the program close all its windows and end; kills it if that takes more than half a second.
    ~WindowProcess();
    WindowProcess(const WindowProcess&) = delete;
    WindowProcess& operator=(const WindowProcess&) = delete;

    /// Whether the program runs and speaks the protocol. Once false, it stays so.
    bool isAlive() const { return _socket >= 0; }

    /// The oldest event that nobody took yet, none of which is `Shown`; the last ones may still come from a program
    /// that is dead by now.
    std::optional<Event> nextEvent();

    /// Does nothing if the program is dead.
    void send(const Request& request);

    /// Kills the program, because of `reason`.
    void giveUp(std::string_view reason);

private:
    void start(const std::filesystem::path& path, const std::string& activationToken, int childSocket);
    void receive();
    void stopWaiting();
    void end();

    ErrorLog& _errorLog;
    std::function<void()> _somethingHappened;
    int _socket = -1; ///< Open exactly while the program is alive.
    int _process = 0;
    unsigned _source = 0;
    unsigned _deadline = 0; ///< A source until the first window is on the screen.
    std::deque<Event> _events;
};

} // namespace platform::linux
