#pragma once

namespace platform::linux {

/// Builds the bridge to assistive technology, which GTK was kept from building; the bridge heeds the user's
/// NO_AT_BRIDGE. On X11 the address of its bus is read through the display that is open already: the bridge would
/// open another connection, which delays the window. Changes the environment for that moment, so no thread may be
/// reading it.
void meetAssistiveTechnology();

} // namespace platform::linux
