#pragma once

// What the command line can ask for beside a timer.

#include <optional>

/// Does what the command line asks for if that is not to run the timer, and returns the process's status then.
std::optional<int> doWithoutTimer(int argc, const char* const* argv);
