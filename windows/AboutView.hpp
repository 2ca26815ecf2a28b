#pragma once

// The About box: the program's name and picture, which build it is, and where to find its licence, its makers
// and a way to support them.

#include "config/BuildInfo.hpp"
#include "config/Cfg.hpp"
#include "platform/View.hpp"

#include <functional>
#include <memory>

namespace marvelode {

class AboutView {
public:
    AboutView(std::shared_ptr<Cfg> cfg, std::shared_ptr<BuildInfo> buildInfo);

    platform::View body() const;

    std::function<void()> _done = [] {};
    std::shared_ptr<Cfg> cfg;
    std::shared_ptr<BuildInfo> buildInfo;
};

} // namespace marvelode
