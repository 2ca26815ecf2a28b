#pragma once

// Runs the program's alerts as AppKit's own. The alert on screen lives only while it is being answered.

#include "platform/NSAlert.hpp"

namespace macos {

/// Shows `model` modally, keeps the state of its check box in it, and gives the user's answer.
int runAlert(platform::NSAlert& model);

} // namespace macos
