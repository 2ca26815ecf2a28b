// The program's message in the notification area, with a stand-in for that area.

#include "platform/linux/trayless/Notification.hpp"

#include "tests/support/NotificationDaemon.hpp"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class NotificationTest : public testing::Test {
protected:
    void show(const char* summary = "Summary") {
        notification->show(summary, "Body", {{"default", "Show"}, {"Quit", "Quit it"}});
    }

    /// Waits until everything that either side has sent is with the other.
    void settle() {
        EXPECT_TRUE(call(other.get(), "org.freedesktop.Notifications", "/org/freedesktop/Notifications",
                         "org.freedesktop.DBus.Peer", "Ping", nullptr));
        call(other.get(), g_dbus_connection_get_unique_name(bus.get()), "/", "org.freedesktop.DBus.Peer", "Ping",
             nullptr);
    }

    std::uint32_t number() const { return daemon->onScreen.begin()->first; }

    ObjectHandle<GDBusConnection> bus = connectToSession();
    ObjectHandle<GDBusConnection> other = connectToSession();
    std::optional<NotificationDaemon> daemon{std::in_place};
    std::vector<std::string> chosen;
    ActivationToken token;
    std::optional<Notification> notification{std::in_place, bus.get(),
                                             [this](std::string_view key) { chosen.emplace_back(key); }, token};
};

TEST_F(NotificationTest, SaysWhatItIsGiven) {
    show();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    const auto& message = daemon->onScreen.at(number());
    EXPECT_EQ(message.program, "Marvelode Timer");
    EXPECT_EQ(message.icon, "org.marvelode.Timer");
    EXPECT_EQ(message.desktopEntry, "org.marvelode.Timer");
    EXPECT_EQ(message.summary, "Summary");
    EXPECT_EQ(message.body, "Body");
    EXPECT_THAT(message.actions, ElementsAre(Pair("default", "Show"), Pair("Quit", "Quit it")));
    EXPECT_EQ(message.expiry, -1);
}

TEST_F(NotificationTest, TellsWhichActionWasChosen) {
    show();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    settle();
    daemon->choose(number(), "Quit");
    daemon->choose(number(), "default");
    EXPECT_TRUE(runLoopUntil([&] { return chosen.size() == 2; }));
    EXPECT_THAT(chosen, ElementsAre("Quit", "default"));
}

TEST_F(NotificationTest, HeedsNoOtherMessagesActionsAndNoNonsense) {
    daemon->choose(0, "Quit");
    show();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    settle();
    daemon->choose(number() + 1, "Quit");
    daemon->babble(g_variant_new("(s)", "Quit"));
    daemon->choose(number(), "default");
    EXPECT_TRUE(runLoopUntil([&] { return !chosen.empty(); }));
    EXPECT_THAT(chosen, ElementsAre("default"));
}

TEST_F(NotificationTest, ReplacesItsEarlierMessage) {
    show();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    settle();
    show("Another");
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 2; }));
    ASSERT_EQ(daemon->onScreen.size(), 1U);
    EXPECT_EQ(daemon->onScreen.at(number()).summary, "Another");
}

TEST_F(NotificationTest, IsWithdrawnOnce) {
    show();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    settle();
    notification->withdraw();
    notification->withdraw();
    settle();
    EXPECT_EQ(daemon->closings.size(), 1U);
    EXPECT_THAT(daemon->onScreen, IsEmpty());
}

TEST_F(NotificationTest, IsWithdrawnEvenBeforeItsNumberIsKnown) {
    show();
    notification->withdraw();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    EXPECT_TRUE(runLoopUntil([&] { return daemon->onScreen.empty(); }));
}

TEST_F(NotificationTest, IsShownOnceIfItIsWithdrawnAndShownAgainBeforeItsNumberIsKnown) {
    show("First");
    notification->withdraw();
    show("Second");
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 2; }));
    settle();
    ASSERT_EQ(daemon->onScreen.size(), 1U);
    EXPECT_EQ(daemon->onScreen.at(number()).summary, "Second");
}

TEST_F(NotificationTest, TouchesNoMessageOfAServiceThatCameLater) {
    show();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    settle();
    daemon.reset();
    daemon.emplace();
    settle();
    notification->withdraw();
    settle();
    EXPECT_THAT(daemon->closings, IsEmpty()) << "that number is of another program's message";
}

TEST_F(NotificationTest, GoesWithItsOwner) {
    show();
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    settle();
    notification.reset();
    EXPECT_TRUE(runLoopUntil([&] { return daemon->onScreen.empty(); }));
}

TEST_F(NotificationTest, DoesNothingWhereThereAreNoNotifications) {
    daemon.reset();
    show();
    notification->withdraw();
    call(other.get(), g_dbus_connection_get_unique_name(bus.get()), "/", "org.freedesktop.DBus.Peer", "Ping",
         nullptr);
    daemon.emplace();
    show("Later");
    ASSERT_TRUE(runLoopUntil([&] { return daemon->shows == 1; }));
    EXPECT_EQ(daemon->onScreen.at(number()).summary, "Later");
}

} // namespace
} // namespace platform::linux
