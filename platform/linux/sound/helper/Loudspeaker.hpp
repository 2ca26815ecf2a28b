#pragma once

// The loudspeaker of the person's desktop: the sound server, or the sound card itself where no server runs. What is
// played counts as an event of the desktop, so that its volume is that of the other alert sounds.

#include "platform/linux/sound/helper/Sound.hpp"

#include <string>

namespace sound {

/// Plays `sound` to its end; throws a `Failure` if it cannot be heard.
void play(const Sound& sound);

/// Plays the sound that the sound theme has for `event`, to its end, at that share of its loudness; throws a
/// `Failure` if it cannot be heard or the theme has none.
void playThemed(const std::string& event, double volume);

} // namespace sound
