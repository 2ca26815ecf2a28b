#include "tests/support/MisbehavingBus.hpp"

#include <gio/gunixsocketaddress.h>
#include <glib-unix.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <memory>
#include <utility>
#include <vector>

using platform::linux::ObjectHandle;

namespace {

using MessageHandle = ObjectHandle<GDBusMessage>;

constexpr const char* clientName = ":1.7";
constexpr const char* loginManager = ":1.2";
constexpr std::chrono::milliseconds delay{50};

MessageHandle answerTo(GDBusMessage* call, GVariant* body) {
    MessageHandle answer{g_dbus_message_new_method_reply(call)};
    g_dbus_message_set_sender(answer.get(), "org.freedesktop.DBus");
    g_dbus_message_set_destination(answer.get(), clientName);
    g_dbus_message_set_serial(answer.get(), g_dbus_message_get_serial(call));
    if (body) {
        g_dbus_message_set_body(answer.get(), body);
    }
    return answer;
}

MessageHandle wakeSignal() {
    MessageHandle signal{
        g_dbus_message_new_signal("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep")};
    g_dbus_message_set_sender(signal.get(), loginManager);
    g_dbus_message_set_serial(signal.get(), 1000);
    g_dbus_message_set_body(signal.get(), g_variant_new("(b)", FALSE));
    return signal;
}

} // namespace

MisbehavingBus::MisbehavingBus(Step step, Trouble trouble)
    : _step{step}
    , _trouble{trouble}
    , _socket{g_socket_new(G_SOCKET_FAMILY_UNIX, G_SOCKET_TYPE_STREAM, G_SOCKET_PROTOCOL_DEFAULT, nullptr)} {
    const ObjectHandle<GSocketAddress> address{g_unix_socket_address_new(_path.c_str())};
    EXPECT_TRUE(g_socket_bind(_socket.get(), address.get(), TRUE, nullptr));
    EXPECT_TRUE(g_socket_listen(_socket.get(), nullptr));
    const auto cameIn = [](gint, GIOCondition, gpointer self) -> gboolean {
        static_cast<MisbehavingBus*>(self)->letIn();
        return G_SOURCE_CONTINUE;
    };
    _source = g_unix_fd_add(g_socket_get_fd(_socket.get()), G_IO_IN, cameIn, this);
}

MisbehavingBus::~MisbehavingBus() {
    g_source_remove(_source);
    for (const Client& client : _clients) {
        if (client.source != 0) {
            g_source_remove(client.source);
        }
    }
}

void MisbehavingBus::letIn() {
    Client& client = _clients.emplace_back();
    client.bus = this;
    client.socket.reset(g_socket_accept(_socket.get(), nullptr, nullptr));
    g_socket_set_blocking(client.socket.get(), FALSE);
    const auto spoke = [](gint, GIOCondition, gpointer data) -> gboolean {
        Client& speaker = *static_cast<Client*>(data);
        const bool goesOn = speaker.bus->listenTo(speaker);
        if (!goesOn) {
            speaker.source = 0;
            g_socket_close(speaker.socket.get(), nullptr);
        }
        return goesOn;
    };
    client.source = g_unix_fd_add(g_socket_get_fd(client.socket.get()),
                                  static_cast<GIOCondition>(G_IO_IN | G_IO_HUP), spoke, &client);
}

bool MisbehavingBus::listenTo(Client& client) {
    std::array<char, 4096> bytes{};
    const gssize size = g_socket_receive(client.socket.get(), bytes.data(), bytes.size(), nullptr, nullptr);
    if (size <= 0) {
        return false;
    }
    client.unread.append(bytes.data(), static_cast<std::size_t>(size));
    if (!client.isGreeted) {
        greet(client);
    }
    constexpr std::size_t shortestMessage = 16;
    while (client.isGreeted && client.unread.size() >= shortestMessage) {
        std::vector<unsigned char> blob{client.unread.begin(), client.unread.end()};
        const gssize needed = g_dbus_message_bytes_needed(blob.data(), blob.size(), nullptr);
        if (needed <= 0 || static_cast<std::size_t>(needed) > blob.size()) {
            break;
        }
        const MessageHandle message{g_dbus_message_new_from_blob(blob.data(), static_cast<std::size_t>(needed),
                                                                 G_DBUS_CAPABILITY_FLAGS_NONE, nullptr)};
        client.unread.erase(0, static_cast<std::size_t>(needed));
        answer(client, message.get());
    }
    return !_isInTrouble || _trouble != Trouble::Death;
}

/// Agrees to every line of the greeting, until the client begins to send messages.
void MisbehavingBus::greet(Client& client) {
    constexpr std::string_view lineEnd = "\r\n";
    for (std::size_t end = client.unread.find(lineEnd); end != std::string::npos && !client.isGreeted;
         end = client.unread.find(lineEnd)) {
        const std::string line = client.unread.substr(0, end);
        client.unread.erase(0, end + lineEnd.size());
        client.isGreeted = line == "BEGIN";
        const std::string agreement = "OK 0123456789abcdef0123456789abcdef\r\n";
        const bool tellsUser = line.starts_with("DATA") || line.find("AUTH EXTERNAL ") != std::string::npos;
        if (tellsUser && !misbehaves(Step::Greeting, client, agreement)) {
            send(client, agreement);
        } else if (line.ends_with("AUTH EXTERNAL")) {
            send(client, "DATA\r\n"); // which user
        } else if (line.ends_with("AUTH")) {
            send(client, "REJECTED EXTERNAL\r\n"); // in which way else
        } else if (line == "NEGOTIATE_UNIX_FD") {
            send(client, "ERROR\r\n");
        }
    }
}

void MisbehavingBus::answer(Client& client, GDBusMessage* message) {
    const std::string_view method = g_dbus_message_get_member(message);
    if (method == "Hello") {
        const std::string welcome = bytesOf(answerTo(message, g_variant_new("(s)", clientName)).get());
        if (!misbehaves(Step::Hello, client, welcome)) {
            send(client, welcome);
        }
    } else if (method == "RequestName") {
        misbehaves(Step::Name, client, ""); // or says nothing: nobody gets a name here
    } else if (method == "AddMatch") {
        const std::string done = bytesOf(answerTo(message, nullptr).get());
        const std::string signal = bytesOf(wakeSignal().get());
        if (!misbehaves(Step::Subscription, client, done + signal)) {
            send(client, done);
            if (!misbehaves(Step::Signal, client, signal)) {
                send(client, signal);
            }
        }
    } else if (method == "GetNameOwner") {
        send(client, bytesOf(answerTo(message, g_variant_new("(s)", loginManager)).get()));
    }
}

/// Whether this is the step at which the bus misbehaves; if so, it does.
bool MisbehavingBus::misbehaves(Step step, Client& client, const std::string& lateAnswer) {
    if (step != _step) {
        return false;
    }
    _isInTrouble = true;
    if (_trouble == Trouble::Nonsense) {
        send(client, std::string(100, '\xFF') + "\r\n");
    } else if (_trouble == Trouble::Lateness) {
        client.late.start(delay, [&client, lateAnswer] { send(client, lateAnswer); });
    }
    return true;
}

void MisbehavingBus::send(const Client& client, const std::string& bytes) {
    g_socket_send(client.socket.get(), bytes.data(), bytes.size(), nullptr, nullptr);
}

std::string MisbehavingBus::bytesOf(GDBusMessage* message) {
    std::size_t size = 0;
    const std::unique_ptr<unsigned char, platform::linux::Release<g_free>> blob{
        g_dbus_message_to_blob(message, &size, G_DBUS_CAPABILITY_FLAGS_NONE, nullptr)};
    return {blob.get(), blob.get() + size};
}
