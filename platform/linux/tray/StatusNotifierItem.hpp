#pragma once

// The status item on the session bus, in the protocol org.kde.StatusNotifierItem: the panel reads the item's
// properties and is sent a signal when one of them has changed, and only then.

#include "platform/linux/ActivationToken.hpp"
#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/Resources.hpp"
#include "platform/linux/glib/ExportedInterface.hpp"
#include "platform/linux/tray/StatusContent.hpp"
#include "platform/linux/tray/Tray.hpp"
#include "platform/linux/tray/TrayHost.hpp"

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::linux {

class StatusNotifierItem {
public:
    /// Where the item's menu must be put on the bus.
    static constexpr const char* menuPath = "/MenuBar";

    /// Puts the item on the bus and offers it to the panel, as soon as there is one. `resources` must
    /// outlive it. `trayChanged` is told whether there is a panel, at first and whenever that changes. `activated`
    /// is called when the user clicks the item in a panel that then shows no menu. `activationToken` keeps what the
    /// panel hands out for the window that the user's next pick opens.
    StatusNotifierItem(GDBusConnection* bus, const Resources& resources, StatusContent content,
                       std::function<void(bool isPresent)> trayChanged, std::function<void()> activated,
                       ActivationToken& activationToken, ErrorLog& errorLog);

    /// Shows `content` from now on.
    void show(const StatusContent& content);

    /// Which panel shows the item, and what it is given, for people.
    std::string panelInWords() const;

private:
    VariantHandle property(std::string_view name) const;
    VariantHandle drawPictures() const;
    void drawFor(std::string_view processName);
    void announce(const std::vector<ExportedInterface::Signal>& changes);
    ExportedInterface::Signal newLabel() const;

    const Resources& _resources;
    StatusContent _content;
    const TrayHost* _host = &TrayHost::ofProcess({}); // one of a fixed table
    VariantHandle _pictures;                          ///< Of `_content`, as far as they are kept.
    std::string _process;                             ///< Of the panel that appeared last.
    ExportedInterface _interface;
    Tray _tray;
};

} // namespace platform::linux
