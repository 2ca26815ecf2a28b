#pragma once

// The program's place in the menu bar or panel: a picture with a text beside it and a menu behind. Every change is
// passed on to the desktop, which shows it in the form that its panel can show best.

#include "platform/NSImage.hpp"
#include "platform/NSMenu.hpp"

#include <cstdint>
#include <memory>
#include <optional>

namespace platform {

/// What is seen of a status item.
class NSStatusBarButton {
public:
    /// Mouse events that trigger the button, as bits.
    using EventMask = std::uint64_t;
    static constexpr EventMask LeftMouseUp = 1U << 2U;
    static constexpr EventMask RightMouseUp = 1U << 4U;

    const void* target = nullptr; ///< The object that is sent the action, if one is set; not owned.

    /// Which mouse events trigger the button.
    void sendActionOn(EventMask mask) { _actionMask = mask; }
    EventMask actionMask() const { return _actionMask; }

    const std::optional<NSImage>& image() const { return _image; }
    void setImage(NSImage image);

    /// Changes the size at which the image is drawn; there must be one.
    void setImageSize(NSSize size);

    const NSAttributedString& attributedTitle() const { return _attributedTitle; }
    void setAttributedTitle(NSAttributedString title);

private:
    EventMask _actionMask = LeftMouseUp;
    std::optional<NSImage> _image;
    NSAttributedString _attributedTitle;
};

/// A status item; on screen from its creation until its last owner releases it.
class NSStatusItem {
public:
    explicit NSStatusItem(double length)
        : length{length} {}

    const double length; ///< The item's width in points, on desktops where items have one.

    /// Null if the desktop cannot show a button.
    NSStatusBarButton* button() { return &_button; }
    const NSStatusBarButton* button() const { return &_button; }

    const std::shared_ptr<NSMenu>& menu() const { return _menu; }
    void setMenu(std::shared_ptr<NSMenu> menu);

private:
    NSStatusBarButton _button;
    std::shared_ptr<NSMenu> _menu;
};

/// The desktop's bar of status items.
class NSStatusBar {
public:
    static NSStatusBar& system();

    /// A new item, `length` points wide, which the bar shares until the program ends.
    std::shared_ptr<NSStatusItem> statusItemWithLength(double length);
};

} // namespace platform
