#pragma once

// What was found out about the program and its desktop: pairs of a subject and one line about it.

#include <string>
#include <utility>
#include <vector>

namespace platform::linux {

using Findings = std::vector<std::pair<std::string, std::string>>;

} // namespace platform::linux
