#include "platform/NSMenu.hpp"

#include "platform/Desktop.hpp"

#include <algorithm>

namespace platform {

std::shared_ptr<NSMenuItem> NSMenuItem::separator() {
    auto item = std::make_shared<NSMenuItem>("", nullptr, "");
    item->_isSeparator = true;
    return item;
}

void NSMenuItem::setState(StateValue state) {
    if (_state == state && _hasState) {
        return;
    }
    _state = state;
    _hasState = true;
    desktop().menuChanged();
}

std::shared_ptr<NSMenuItem> NSMenu::itemWithTitle(std::string_view title) const {
    const auto found =
        std::find_if(_items.begin(), _items.end(), [&](const auto& item) { return item->title == title; });
    return found == _items.end() ? nullptr : *found;
}

bool NSMenu::validates(const NSMenuItem& item) const {
    if (item.isSeparatorItem() || NSApplication::shared().isModal()) {
        return false;
    }
    return autoenablesItems ? item.action != nullptr : item.isEnabled.value_or(true);
}

const NSMenu::Items& itemsOf(const std::shared_ptr<NSMenu>& menu) {
    static const NSMenu::Items none;
    return menu ? menu->items() : none;
}

void NSMenu::performActionForItem(NSMenuItem& item) const {
    if (validates(item) && item.action) {
        item.action(item);
    }
}

} // namespace platform
