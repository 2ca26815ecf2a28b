#pragma once

// The modal panel that hosts one declarative view, shown from the call of `runModal` until the view reports that
// the user is done. A host is made once and run any number of times; its view keeps its state from one run to the
// next.

#include "app/MakeShared.hpp"
#include "config/Cfg.hpp"
#include "platform/NSApplication.hpp"
#include "platform/NSPanel.hpp"

#include <concepts>
#include <functional>
#include <memory>
#include <utility>

namespace marvelode {

/// A view that can be hosted: it builds its tree, and calls `_done` when the user has finished with it.
template <typename View>
concept UXWindowView = requires(View view, const View& constant) {
    { view._done } -> std::same_as<std::function<void()>&>;
    { constant.body() } -> std::same_as<platform::View>;
};

template <UXWindowView View>
class UXWindow : public platform::NSWindowDelegate, public std::enable_shared_from_this<UXWindow<View>> {
public:
    /// Builds the panel around a copy of `view`; `styleMask` is added to the panel's own. Shows nothing yet. Made
    /// by `makeShared`; never destroyed, since the panel's content owns the host that owns the panel.
    UXWindow(ConstructionKey key, const std::shared_ptr<Cfg>& cfg, View view,
             platform::NSPanel::StyleMask styleMask);
    void finishConstruction(ConstructionKey key);
    UXWindow() = delete;
    UXWindow(const UXWindow&) = delete;
    UXWindow& operator=(const UXWindow&) = delete;

    /// Shows the panel in the middle of the screen, waits until it closes, then calls `onComplete`.
    void runModal(const std::function<void()>& onComplete);

    void windowWillClose() override { platform::NSApplication::shared().stopModal(); }

    platform::NSPanel window;

private:
    /// The root of the panel's content.
    struct Root {
        View view;
        platform::View operator()() const { return view.body(); }
    };
};

template <UXWindowView View>
UXWindow<View>::UXWindow(ConstructionKey, const std::shared_ptr<Cfg>&, View view,
                         platform::NSPanel::StyleMask styleMask) {
    using platform::NSPanel;

    window.contentView = std::make_shared<platform::NSHostingView>();
    window.contentView->rootView = Root{std::move(view)};
    window.delegate = this;
    window.title = "Marvelode Timer";
    window.styleMask |= styleMask;
    for (const auto type :
         {NSPanel::ButtonType::Close, NSPanel::ButtonType::Miniaturize, NSPanel::ButtonType::Zoom}) {
        if (auto* button = window.standardWindowButton(type)) {
            button->isHidden = true;
        }
    }
    window.preventsApplicationTerminationWhenModal = true;
    window.isMovableByWindowBackground = true;
    window.contentView->isHidden = true;
    window.titleVisibility = NSPanel::TitleVisibility::Hidden;
    window.titlebarAppearsTransparent = true;
}

template <UXWindowView View>
void UXWindow<View>::finishConstruction(ConstructionKey) {
    View& view = window.contentView->rootView.template target<Root>()->view;
    view._done = [host = this->shared_from_this()] { host->window.close(); };
}

template <UXWindowView View>
void UXWindow<View>::runModal(const std::function<void()>& onComplete) {
    window.center();
    if (window.contentView) {
        window.contentView->isHidden = false;
    }
    platform::NSApplication::shared().runModal(window);
    if (window.contentView) {
        window.contentView->isHidden = true;
    }
    onComplete();
}

} // namespace marvelode
