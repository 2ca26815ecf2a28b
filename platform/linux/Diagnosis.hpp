#pragma once

// What one has to know of a desktop to tell why the timer does not do there what it should: found out without
// changing anything, whether or not the timer runs, and fit to be shown to everybody.

#include "platform/linux/Findings.hpp"
#include "platform/linux/Places.hpp"

#include <string>

namespace platform::linux {

/// What is found in this process's session. A service that does not answer within two seconds is named as such.
Findings diagnose(const Places& places);

/// `text` without what tells who the user is: home folder, runtime folder, names of user and machine, bus
/// addresses.
std::string withoutPrivateMatters(std::string text);

} // namespace platform::linux
