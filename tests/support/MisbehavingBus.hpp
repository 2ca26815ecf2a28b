#pragma once

// A message bus that misbehaves at one step of its protocol. Until then it answers its clients as a bus does, from
// the main loop of the test.

#include "platform/linux/glib/DelayedCall.hpp"
#include "platform/linux/glib/Handles.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <list>
#include <string>
#include <string_view>

class MisbehavingBus {
public:
    /// What the bus is asked for, in the order in which a client asks.
    enum class Step { Greeting, Hello, Name, Subscription, Signal };
    /// What it does then, and from then on.
    enum class Trouble { Silence, Lateness, Nonsense, Death };

    MisbehavingBus(Step step, Trouble trouble);
    ~MisbehavingBus();
    MisbehavingBus(const MisbehavingBus&) = delete;
    MisbehavingBus& operator=(const MisbehavingBus&) = delete;

    std::string address() const { return "unix:path=" + _path; }

    /// Whether a client has come to the step at which the bus misbehaves.
    bool isInTrouble() const { return _isInTrouble; }

private:
    struct Client {
        MisbehavingBus* bus = nullptr;
        platform::linux::ObjectHandle<GSocket> socket;
        unsigned source = 0;
        std::string unread;
        bool isGreeted = false;
        platform::linux::DelayedCall late{};
    };

    void letIn();
    bool listenTo(Client& client);
    void greet(Client& client);
    void answer(Client& client, GDBusMessage* message);
    bool misbehaves(Step step, Client& client, const std::string& lateAnswer);
    static void send(const Client& client, const std::string& bytes);
    static std::string bytesOf(GDBusMessage* message);

    const Step _step;
    const Trouble _trouble;
    const TemporaryFolder _folder;
    const std::string _path = _folder.path / "bus";
    platform::linux::ObjectHandle<GSocket> _socket;
    std::list<Client> _clients;
    unsigned _source;
    bool _isInTrouble = false;
};
