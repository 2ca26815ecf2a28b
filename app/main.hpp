#pragma once

// The program's entry, called by the `main` of each desktop once that desktop exists.

#include <memory>

namespace marvelode {

class App;

extern bool isTest;               ///< Whether the program was started in test mode; set once.
extern std::shared_ptr<App>& app; ///< The one application object; set once, kept alive until the process has ended.

/// Creates the application object, hands it to the desktop's run loop and returns the process's status. Test mode
/// is on exactly when the one and only argument is "-test".
int marvelodeTimer(int argc, const char* const* argv);

} // namespace marvelode
