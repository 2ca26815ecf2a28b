#pragma once

// A menu and its entries. An entry knows what to do when it is picked; whether it can be picked is decided by the
// menu, and how the menu looks by the desktop.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A menu's delegate; none of its callbacks is used.
class NSMenuDelegate {
public:
    virtual ~NSMenuDelegate() = default;
};

/// One entry of a menu, or a line that separates entries.
class NSMenuItem {
public:
    using Action = std::function<void(NSMenuItem& sender)>;
    enum class StateValue { Off = 0, On = 1 };

    /// An entry that runs `action` when picked. `keyEquivalent` is a lower-case letter that picks the entry, with
    /// the desktop's own modifier, while the menu is open; empty for none.
    NSMenuItem(std::string title, Action action, std::string keyEquivalent)
        : title{std::move(title)}
        , action{std::move(action)}
        , keyEquivalent{std::move(keyEquivalent)} {}

    static std::shared_ptr<NSMenuItem> separator();

    const std::string title;
    const Action action;
    const std::string keyEquivalent;

    /// Whether the entry was marked enabled; absent if it was never marked, which counts as enabled. Used only by
    /// menus that do not enable their entries by themselves.
    std::optional<bool> isEnabled;

    bool isSeparatorItem() const { return _isSeparator; }

    /// Whether a check mark stands before the title.
    StateValue state() const { return _state; }

    /// Whether the check mark was ever set or cleared: desktops then leave room for it.
    bool hasState() const { return _hasState; }

    /// Sets or clears the check mark; the desktop shows it at once.
    void setState(StateValue state);

private:
    bool _isSeparator = false;
    StateValue _state = StateValue::Off;
    bool _hasState = false;
};

/// A list of entries, from top to bottom. Complete when a status item is given it: of what changes later, check
/// marks alone are shown.
class NSMenu {
public:
    NSMenuDelegate* delegate = nullptr; ///< Not owned.
    bool autoenablesItems = true;       ///< On: exactly the entries that have an action can be picked.

    void addItem(std::shared_ptr<NSMenuItem> item) { _items.push_back(std::move(item)); }
    using Items = std::vector<std::shared_ptr<NSMenuItem>>;
    const Items& items() const { return _items; }

    /// The first entry of that title; null if there is none.
    std::shared_ptr<NSMenuItem> itemWithTitle(std::string_view title) const;

    /// Whether the user may pick `item` now. Nothing can be picked while an alert or a modal panel is up.
    bool validates(const NSMenuItem& item) const;

    /// For desktops: runs the entry's action as a pick by the user does; does nothing if it cannot be picked.
    void performActionForItem(NSMenuItem& item) const;

private:
    Items _items;
};

/// The entries of `menu`; none if that is null.
const NSMenu::Items& itemsOf(const std::shared_ptr<NSMenu>& menu);

} // namespace platform
