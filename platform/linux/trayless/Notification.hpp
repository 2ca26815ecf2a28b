#pragma once

// One message of the program in the desktop's notification area, with actions to choose from. Where the desktop
// shows no notifications, nothing happens.

#include "platform/linux/ActivationToken.hpp"
#include "platform/linux/glib/BusCall.hpp"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::linux {

class Notification {
public:
    struct Action {
        std::string key;
        std::string label;
    };

    /// Calls `chosen` from the main loop with the key of an action that the user chose; "default" stands for a
    /// click on the message itself. Before that, `activationToken` keeps what the desktop may hand out for the
    /// window that the action opens.
    Notification(GDBusConnection* sessionBus, std::function<void(std::string_view key)> chosen,
                 ActivationToken& activationToken);
    ~Notification();
    Notification(const Notification&) = delete;
    Notification& operator=(const Notification&) = delete;

    /// Puts the message on screen, in place of an earlier one.
    void show(const std::string& summary, const std::string& body, const std::vector<Action>& actions);

    /// Takes the message off the screen.
    void withdraw();

private:
    struct Message {
        std::string summary;
        std::string body;
        std::vector<Action> actions;
    };

    void listen();
    void send();
    void sent(const VariantHandle& answer);

    ObjectHandle<GDBusConnection> _sessionBus;
    std::function<void(std::string_view)> _chosen;
    ActivationToken& _activationToken;
    BusCall _showing;
    std::vector<unsigned> _subscriptions;
    std::uint32_t _id = 0; ///< As the desktop numbers it; 0 while there is none.
    std::optional<Message> _wanted;
    bool _isOutdated = false; ///< What is on its way to the screen.
};

} // namespace platform::linux
