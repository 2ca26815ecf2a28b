#pragma once

// The phase of the break cycle, `App::State`. It has a header of its own because the event bus carries it and the
// application object includes the bus.

namespace marvelode {

enum class AppState {
    Init,      ///< Before the first interval; never again.
    Timing,    ///< A work interval is running.
    Reminding, ///< A break is due; the next interval waits.
};

} // namespace marvelode
