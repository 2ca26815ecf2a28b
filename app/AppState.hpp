#pragma once

// The phase of the break cycle, as everybody who follows the cycle sees it. It is `App::State`; it stands in a
// header of its own because the event bus carries it and the application object owns the bus.

namespace marvelode {

enum class AppState {
    Init,      ///< Before the first interval; never again.
    Timing,    ///< A work interval is running.
    Reminding, ///< A break is due; the next interval waits.
};

} // namespace marvelode
