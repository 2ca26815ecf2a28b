#pragma once

// The settings window: the settings form in a modal panel.

#include "windows/SettingsView.hpp"
#include "windows/UXWindow.hpp"

namespace marvelode {

class UXSettings : public UXWindow<SettingsView> {
public:
    using UXWindow::UXWindow;
};

} // namespace marvelode
