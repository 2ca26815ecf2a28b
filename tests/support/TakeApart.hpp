#pragma once

// Takes the components of a program that has ended apart. They own one another in cycles and live until the process
// ends; where many programs run in one process, these cycles are broken here, so that the leak checker finds leaks
// only.

#include "app/App.hpp"

#include <memory>

template <typename View>
void takeApart(marvelode::UXWindow<View>& host) {
    const std::shared_ptr<platform::NSHostingView> ownerOfTheHost = std::move(host.window.contentView);
}

inline void takeApart(marvelode::UXMenu& menu) {
    takeApart(*menu.about);
    takeApart(*menu.settings);
    const std::shared_ptr<platform::NSMenu> ownerOfTheMenu = std::move(menu.main);
}

/// The bus forgets its subscribers.
inline void takeApart(marvelode::Events& events) { const marvelode::Events subscribers = std::move(events); }

inline void takeApart(marvelode::App& app) {
    const std::shared_ptr<marvelode::UXStatus> status = std::move(app.status);
    if (status && status->menu) {
        takeApart(*status->menu);
    }
    takeApart(*app.events);
    const std::shared_ptr<platform::Timer> timer = std::move(app.systemTimer);
}
