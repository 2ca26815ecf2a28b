#pragma once

// The upper part of both windows: the application picture and, beside it, the program's name.

#include "platform/View.hpp"

#include <vector>

namespace marvelode {

/// The picture, 50 points high, unless `isTest`; beside it the name, with `below` under it.
platform::View heading(bool isTest, std::vector<platform::View> below);

} // namespace marvelode
