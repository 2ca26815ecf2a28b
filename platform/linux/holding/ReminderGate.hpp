#pragma once

// What a reminder passes on its way to the user: sound and window both wait here until it is known whether
// reminders are held back, and go no further if they are, or if the break is over by then. If that is known at
// once, nothing waits.

#include <functional>
#include <string>

namespace platform::linux {

class ReminderGate {
public:
    /// Told once why reminders are held back; an empty text says that they are not.
    using Answered = std::function<void(const std::string& reason)>;
    /// Calls its argument once, at once or in bounded time, and never after this gate's end.
    using Question = std::function<void(Answered)>;

    /// Asks `ask` for each reminder. `iterate` runs the main loop until something has happened; `isBreakDue` tells
    /// whether a reminder that has waited still makes sense.
    ReminderGate(Question ask, std::function<void()> iterate, std::function<bool()> isBreakDue);

    /// Makes the reminder's sound by calling `play`: at once, when the answer has come, or never. Returns what
    /// `play` returned, or true while that is open.
    bool sound(std::function<bool()> play);

    /// Waits for the answer; returns whether the reminder's window may be shown.
    bool admitsWindow();

    /// Lets nothing through any more, and ends every wait.
    void close();

    /// Looks whether the break is due, after each event and ahead of each window. Nothing is held back once it is
    /// not; and if that was a restart during a break, its sound waits no longer.
    void look();

    /// Why the last reminder was held back; empty if it was not, or its break is over.
    const std::string& reason() const { return _heldBecause; }

private:
    void ask();
    void answered(const std::string& reason);

    Question _ask;
    std::function<void()> _iterate;
    std::function<bool()> _isBreakDue;
    std::function<bool()> _sound; ///< Waits for the answer.
    std::string _answer;
    std::string _heldBecause;
    bool _isDue = false; ///< As it was looked at last.
    bool _isAsking = false;
    bool _isClosed = false;
};

} // namespace platform::linux
