#pragma once

// The status item's menu on the session bus, in the protocol com.canonical.dbusmenu: the panel draws the menu and
// tells what was picked. Entries are known by their place, from 1 on.

#include "platform/NSMenu.hpp"
#include "platform/linux/glib/ExportedInterface.hpp"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace platform::linux {

class MenuExport {
public:
    /// Puts an empty menu on the bus at `path`. What the user picks is run through `post`, so that the panel has
    /// its answer before anything that the entry does.
    MenuExport(GDBusConnection* bus, std::string path, std::function<void(std::function<void()>)> post);

    /// Shows `menu` as it is now, and announces what has changed since the last time.
    void show(const std::shared_ptr<NSMenu>& menu);

private:
    /// What a panel is told of one entry.
    struct Entry {
        const NSMenuItem* item; ///< Of the menu; its title and key never change.
        bool isEnabled;
        bool isToggle;
        bool isOn;
        bool operator==(const Entry&) const = default;
    };

    Entry entryOf(const NSMenuItem& item) const;
    bool isShown() const;
    static GVariant* properties(const Entry& entry, const std::vector<std::string>& wanted);

    VariantHandle answer(std::string_view method, GVariant* arguments);
    VariantHandle layout(std::int32_t parent, const std::vector<std::string>& wanted) const;
    VariantHandle groupProperties(const std::vector<std::int32_t>& identifiers,
                                  const std::vector<std::string>& wanted) const;
    VariantHandle oneProperty(std::int32_t identifier, const char* name) const;
    const Entry* entry(std::int32_t identifier) const;
    bool handle(std::int32_t identifier, std::string_view event);

    std::function<void(std::function<void()>)> _post;
    std::shared_ptr<NSMenu> _menu;
    std::vector<Entry> _entries;
    std::uint32_t _revision = 1;
    ExportedInterface _interface;
};

} // namespace platform::linux
