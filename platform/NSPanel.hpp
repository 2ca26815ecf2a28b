#pragma once

// A window that holds one view and is run modally. The panel's properties are plain; it is on screen only while
// `NSApplication::runModal` runs it.

#include "platform/View.hpp"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace platform {

/// Told of what happens to its window.
class NSWindowDelegate {
public:
    virtual ~NSWindowDelegate() = default;

    /// The window is about to go away, however that came about.
    virtual void windowWillClose() = 0;
};

/// Draws a tree of declarative views inside a panel.
struct NSHostingView {
    std::function<View()> rootView; ///< Builds the tree anew; called each time the panel is shown.
    bool isHidden = false;
};

/// One of the three buttons in a window's title bar.
struct NSWindowButton {
    bool isHidden = false;
};

/// An auxiliary window.
class NSPanel {
public:
    /// Bits that say how the window is framed.
    using StyleMask = std::uint64_t;
    static constexpr StyleMask Titled = 1U << 0U;
    static constexpr StyleMask Closable = 1U << 1U;
    static constexpr StyleMask HUDWindow = 1U << 13U; ///< A dark, translucent panel where the desktop has one.

    enum class ButtonType { Close = 0, Miniaturize = 1, Zoom = 2 };
    enum class TitleVisibility { Visible = 0, Hidden = 1 };

    StyleMask styleMask = Titled | Closable;
    std::string title;
    std::shared_ptr<NSHostingView> contentView;
    NSWindowDelegate* delegate = nullptr; ///< Not owned.
    bool preventsApplicationTerminationWhenModal = false;
    bool isMovableByWindowBackground = false;
    TitleVisibility titleVisibility = TitleVisibility::Visible;
    bool titlebarAppearsTransparent = false;

    /// The title bar's button of that kind; null if the panel has none. Owned by the panel.
    NSWindowButton* standardWindowButton(ButtonType type) { return &_buttons[static_cast<std::size_t>(type)]; }

    /// Puts the panel into the middle of the screen.
    void center();

    /// Takes the panel off the screen; its delegate is told.
    void close();

private:
    std::array<NSWindowButton, 3> _buttons;
};

} // namespace platform
