#pragma once

// The timer's own window, which stands in for the status item where no panel shows it. Implemented by StatusWindow.

namespace platform::linux {

class StandInWindow {
public:
    virtual ~StandInWindow() = default;

    /// Brings the window to the front, at the user's request. One that is on its way there is enough.
    virtual void open() = 0;

    /// Shows the window unless it is on screen already, and leaves the keyboard where it is.
    virtual void appear() = 0;

    virtual void close() = 0;
};

} // namespace platform::linux
