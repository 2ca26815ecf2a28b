#pragma once

// One run of the program that shows windows, and the socket that leads to it. It is started by the constructor and
// is killed, if it has not ended by itself, by the destructor. If its first window is not on the screen after half
// a minute, it is given up, since the user cannot answer what cannot be seen.

#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/HelperProcess.hpp"
#include "platform/linux/HelperProgram.hpp"
#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/window/Protocol.hpp"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace platform::linux {

class WindowProcess {
public:
    /// Starts `program`, and reads what it says whenever the calling thread's main context is iterated. If it
    /// cannot start, or goes away before it is told to, `errorLog` is told why. `somethingHappened` is called
    /// whenever there is an event to take, the first window is on the screen or the program has gone; it must leave
    /// this object alone. The desktop gives the first window the keyboard for `activationToken`, which it handed
    /// out; it may be empty.
    WindowProcess(
        const HelperProgram& program, ErrorLog& errorLog, std::function<void()> somethingHappened = [] {},
        const std::string& activationToken = {});

    /// Tells the program to close all its windows and end; kills it after half a second, whatever it does
    /// meanwhile.
    ~WindowProcess();
    WindowProcess(const WindowProcess&) = delete;
    WindowProcess& operator=(const WindowProcess&) = delete;

    /// Whether the program has ended for want of a display, or was given up since nothing appeared there.
    bool hasFoundNoDisplay() const { return _hasFoundNoDisplay; }

    /// Whether the program runs and speaks the protocol. Once false, it stays so.
    bool isAlive() const { return _socket >= 0; }

    /// Whether a window has been on the screen.
    bool hasShownWindow() const { return _hasShownWindow; }

    /// The oldest event that was not taken yet, none of which is `Shown` or `NoDisplay`; the last ones may still
    /// come from a program that is dead by now.
    std::optional<Event> nextEvent();

    /// Does nothing if the program is dead.
    void send(const Request& request);

    /// Kills the program, because of `reason`.
    void giveUp(std::string_view reason);

private:
    void start(const HelperProgram& program, const std::string& activationToken, int childSocket);
    bool receive();
    void receiveLast();
    void take(const Event& event);
    void missDisplay(std::string_view reason);
    bool isFlood();
    void end();

    ErrorLog& _errorLog;
    std::function<void()> _somethingHappened;
    SessionEnvironment& _session;
    const unsigned _display; ///< As the session numbers it.
    int _socket = -1;        ///< Open exactly while the program is alive.
    std::optional<HelperProcess> _process;
    unsigned _source = 0;
    DelayedCall _deadline; ///< Pending until the first window is on the screen.
    bool _hasFoundNoDisplay = false;
    bool _hasShownWindow = false;
    std::deque<Event> _events;
    std::int64_t _second = 0; ///< Of the monotonic clock.
    int _eventsInSecond = 0;
};

} // namespace platform::linux
