#include "platform/simulated/SimulatedDesktop.hpp"

// What the user of a simulated desktop sees of the status item and does with its menu.

namespace platform::simulated {

const NSStatusItem& SimulatedDesktop::statusItem() const {
    if (!_statusItem) {
        throw Unexpected{"there is no status item"};
    }
    return *_statusItem;
}

std::string SimulatedDesktop::title() const { return statusItem().button()->attributedTitle().string; }

std::optional<NSColor> SimulatedDesktop::titleColor() const {
    return statusItem().button()->attributedTitle().foregroundColor;
}

std::string SimulatedDesktop::icon() const {
    const auto& image = statusItem().button()->image();
    return image ? image->name() : "";
}

SimulatedDesktop::Lines SimulatedDesktop::menu() const {
    if (!statusItem().menu()) {
        throw Unexpected{"the status item has no menu"};
    }
    Lines lines;
    for (const auto& item : statusItem().menu()->items()) {
        if (item->isSeparatorItem()) {
            lines.emplace_back("---");
            continue;
        }
        const std::string enabled = statusItem().menu()->validates(*item) ? "" : "- ";
        const std::string mark = item->state() == NSMenuItem::StateValue::On ? "x " : "";
        const std::string key = item->keyEquivalent.empty() ? "" : " (" + item->keyEquivalent + ")";
        lines.push_back(enabled + mark + item->title + key);
    }
    return lines;
}

const std::shared_ptr<NSMenuItem>& SimulatedDesktop::entry(std::string_view title) const {
    if (statusItem().menu()) {
        for (const auto& item : statusItem().menu()->items()) {
            if (!item->isSeparatorItem() && item->title == title) {
                return item;
            }
        }
    }
    missing("menu entry", title);
}

bool SimulatedDesktop::isEnabled(std::string_view title) const {
    return statusItem().menu()->validates(*entry(title));
}

bool SimulatedDesktop::isChecked(std::string_view title) const {
    return entry(title)->state() == NSMenuItem::StateValue::On;
}

void SimulatedDesktop::pick(std::string_view title) { pick(entry(title)); }

void SimulatedDesktop::pickByKey(std::string_view key) {
    for (const auto& item : statusItem().menu()->items()) {
        if (!key.empty() && item->keyEquivalent == key) {
            pick(item);
            return;
        }
    }
    missing("menu entry with the key", key);
}

void SimulatedDesktop::pick(const std::shared_ptr<NSMenuItem>& item) {
    const std::shared_ptr<NSMenu> menu = statusItem().menu();
    if (!menu->validates(*item)) {
        throw Unexpected{"the menu entry " + inQuotes(item->title) + " cannot be picked now"};
    }
    perform([menu, item] { menu->performActionForItem(*item); });
}

} // namespace platform::simulated
