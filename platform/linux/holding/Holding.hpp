#pragma once

// Whether reminders are held back, and why: on request, or for a cause that the user's settings name. The causes
// are asked for when a reminder is due and at no other time.

#include "platform/linux/DesktopSettings.hpp"
#include "platform/linux/holding/HoldOnRequest.hpp"
#include "platform/linux/holding/HoldQuestion.hpp"
#include "platform/linux/holding/ReminderGate.hpp"

#include <functional>
#include <string>

namespace platform::linux {

class Holding {
public:
    /// Both must outlive this object. `iterate` runs the main loop until something has happened,
    /// `isBreakDue` tells whether a reminder still makes sense, and `secondsSinceBoot` is a clock that counts
    /// sleep.
    Holding(DesktopSettings& settings, HoldQuestion& question, std::function<void()> iterate,
            std::function<bool()> isBreakDue, std::function<TimeInterval()> secondsSinceBoot);

    /// Where reminders pass.
    ReminderGate gate;
    HoldOnRequest request;

    /// Why reminders are held back at present, or the last reminder was; empty otherwise.
    const std::string& reason();

private:
    void ask(ReminderGate::Answered answered);
    void answer(const ReminderGate::Answered& answered, const std::string& cause);

    DesktopSettings& _settings;
    HoldQuestion& _question;
    bool _wasRequested = false; ///< What held the last reminder back, which ends at once when the request does.
};

} // namespace platform::linux
