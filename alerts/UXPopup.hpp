#pragma once

// The reminder that a break is due: one alert, built once and run for every reminder by its owner, who also
// acts on the answer. A tick in its check box stays there.

#include "config/Cfg.hpp"
#include "platform/NSAlert.hpp"

#include <memory>

namespace marvelode {

class UXPopup {
public:
    explicit UXPopup(std::shared_ptr<Cfg> cfg);

    platform::NSAlert alert; ///< "Restart" answers `FirstButtonReturn`, "Snooze" `SecondButtonReturn`.
    const std::shared_ptr<Cfg> cfg;
};

} // namespace marvelode
