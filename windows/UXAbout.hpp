#pragma once

// The About window: the About box in a modal panel.

#include "windows/AboutView.hpp"
#include "windows/UXWindow.hpp"

namespace marvelode {

class UXAbout : public UXWindow<AboutView> {
public:
    using UXWindow::UXWindow;
};

} // namespace marvelode
