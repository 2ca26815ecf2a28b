#pragma once

// The phase of the break cycle, as everybody who follows the cycle sees it. It is `App::State`; it stands in a
// header of its own because the event bus carries it and the application object owns the bus.

namespace marvelode {

enum class AppState {
    Init,      ///< Constructed; no work interval has started yet. Left once and never entered again.
    Timing,    ///< A work interval is running.
    Reminding, ///< The work interval has ended and no new one has started.
};

} // namespace marvelode
