#pragma once

// What services on the buses are asked to find out whether reminders are to be held back. No two desktops tell of
// it in the same way, so all are asked; the bus itself answers for those that are not there.

#include "platform/linux/DesktopSettings.hpp"
#include "platform/linux/glib/BusCall.hpp"

#include <array>
#include <span>

namespace platform::linux {

struct BusQuestion {
    BusMethod method;
    std::array<const char*, 2> arguments{}; ///< Two texts or none.
    bool isOnSystemBus = false;
};

/// The questions that tell of `cause`; none if no service does.
std::span<const BusQuestion> busQuestionsFor(DesktopValues::Cause cause);

/// The services that tell by the signal `ActiveChanged` when they lock and unlock the screen, as questions.
std::span<const BusQuestion> screenSavers();

/// The tuple of the question's arguments.
GVariant* argumentsOf(const BusQuestion& question);

/// Whether an answer to one of the questions says yes; it may be of any type, or null.
bool saysYes(GVariant* answer);

} // namespace platform::linux
