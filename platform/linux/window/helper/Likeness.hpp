#pragma once

// Whether one view can be shown by the widgets of another.

#include "platform/View.hpp"

namespace platform::linux {

/// Whether two views are drawn alike, but for their texts and values and whether they take input. Of stacks, only
/// they themselves are compared and the number of their children.
bool isAlike(const View& one, const View& other);

} // namespace platform::linux
