#pragma once

// The program's status item in the menu bar. Every change of the program's status item is passed on as the message
// that AppKit has for it.

#include "platform/NSStatusItem.hpp"
#include "platform/macos/Menu.hpp"
#include "platform/macos/Retained.hpp"

#import <AppKit/AppKit.h>

#include <memory>
#include <optional>

namespace macos {

class StatusItem {
public:
    /// Puts the item into the menu bar.
    explicit StatusItem(std::shared_ptr<platform::NSStatusItem> model);
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    ~StatusItem();

    /// Shows what has changed since the last time.
    void update();

private:
    void updateButton(NSStatusBarButton* button);
    void updateImage(NSStatusBarButton* button, const platform::NSImage& image);
    bool isAboutToBeSized(const platform::NSImage& image) const;

    std::shared_ptr<platform::NSStatusItem> _model;
    Retained<NSStatusItem> _item;
    Retained<MenuTarget> _menuTarget;

    /// What is on screen.
    struct Shown {
        const void* target = nullptr;
        platform::NSStatusBarButton::EventMask actionMask = platform::NSStatusBarButton::LeftMouseUp;
        std::shared_ptr<platform::NSMenu> menu;
        std::optional<platform::NSImage> image;
        platform::NSAttributedString title;
    } _shown;
};

} // namespace macos
