#include "platform/NSStatusItem.hpp"

#include "platform/Desktop.hpp"
#include "platform/Fatal.hpp"

#include <utility>

namespace platform {

void NSStatusBarButton::setImage(NSImage image) {
    _image = std::move(image);
    desktop().statusItemChanged();
}

void NSStatusBarButton::setImageSize(NSSize size) {
    if (!_image) {
        fatal();
    }
    _image->size = size;
    desktop().statusItemChanged();
}

void NSStatusBarButton::setAttributedTitle(NSAttributedString title) {
    _attributedTitle = std::move(title);
    desktop().statusItemChanged();
}

void NSStatusItem::setMenu(std::shared_ptr<NSMenu> menu) {
    _menu = std::move(menu);
    desktop().menuChanged();
}

NSStatusBar& NSStatusBar::system() {
    static NSStatusBar bar;
    return bar;
}

std::shared_ptr<NSStatusItem> NSStatusBar::statusItemWithLength(double length) {
    auto item = std::make_shared<NSStatusItem>(length);
    desktop().showStatusItem(item);
    return item;
}

} // namespace platform
