// A notification service that misbehaves at each step of what it has to do with the message: the small window is
// there whatever it does, and the message is gone in the end.

#include "platform/linux/trayless/TraylessNotice.hpp"
#include "tests/support/Interference.hpp"
#include "tests/support/NotificationDaemon.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/ShortSeconds.hpp"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

constexpr std::uint32_t notOurs = 999;

void floodWithActions(GDBusConnection* bus) {
    const auto emit = [&](const char* signal, GVariant* arguments) {
        g_dbus_connection_emit_signal(bus, nullptr, "/org/freedesktop/Notifications",
                                      "org.freedesktop.Notifications", signal, arguments, nullptr);
    };
    for (int count = 0; count < 300; ++count) {
        emit("ActionInvoked", g_variant_new("(us)", notOurs, "Quit"));
        emit("ActionInvoked", g_variant_new("(s)", "Quit"));
        emit("ActivationToken", g_variant_new("(us)", notOurs, "token"));
        emit("NotificationClosed", g_variant_new("(uu)", notOurs, 1));
        emit("NotificationClosed", nullptr);
    }
}

const std::vector<Interference::Step> steps{
    {"Notify", "(uint32 7,)", "('what?',)", floodWithActions},
    {"CloseNotification", "()", "('what?',)", floodWithActions},
};

constexpr std::array misbehaviours{Misbehaviour::IsSilent,      Misbehaviour::AnswersLate, Misbehaviour::Refuses,
                                   Misbehaviour::TalksNonsense, Misbehaviour::Floods,      Misbehaviour::Dies};
constexpr std::array names{"IsSilent", "AnswersLate", "Refuses", "TalksNonsense", "Floods", "Dies"};

struct Window final : StandInWindow {
    void open() override { isOpen = true; }
    void appear() override { isOpen = true; }
    void close() override { isOpen = false; }

    bool isOpen = false;
};

class MisbehavingNotifications : public testing::TestWithParam<std::tuple<Interference::Step, Misbehaviour>> {
protected:
    Misbehaviour misbehaviour() const { return std::get<Misbehaviour>(GetParam()); }

    void misbehave() {
        interference.emplace(daemon->bus(), std::get<Interference::Step>(GetParam()), misbehaviour(), 1);
    }

    /// There is no panel, and then there is one.
    void losePanel() {
        notice->trayChanged(false);
        EXPECT_TRUE(runLoopUntil([&] { return window.isOpen; }));
    }
    void findPanel() {
        notice->trayChanged(true);
        EXPECT_FALSE(window.isOpen);
    }

    /// Waits until all that was sent to the service has arrived and was answered.
    void settle() {
        interference->answerNow();
        std::string ignored;
        call(bus.get(), "org.freedesktop.Notifications", "/", "org.freedesktop.DBus.Peer", "Ping", nullptr,
             &ignored);
        runLoopUntil([] { return !g_main_context_pending(nullptr); });
    }

    const ShortSeconds seconds{5ms};
    ObjectHandle<GDBusConnection> bus = connectToSession();
    ActivationToken token;
    Window window;
    std::vector<std::string> picked;
    std::optional<NotificationDaemon> daemon{std::in_place};
    std::optional<Interference> interference;
    std::optional<TraylessNotice> notice{std::in_place, bus.get(), window,
                                         [this](std::string_view entry) { picked.emplace_back(entry); }, token};
};

TEST_P(MisbehavingNotifications, KeepNoWindowFromComingAndGoing) {
    misbehave();
    for (int time = 0; time < 3; ++time) {
        losePanel();
        settle();
        findPanel();
        settle();
    }
    EXPECT_TRUE(picked.empty()) << "nobody has picked anything";
    EXPECT_EQ(token.take(), "");
}

TEST_P(MisbehavingNotifications, LeaveNoMessageBehindOnceTheyBehave) {
    misbehave();
    losePanel();
    settle();
    findPanel();
    settle();
    if (misbehaviour() == Misbehaviour::Dies) {
        daemon.emplace();
    }
    losePanel();
    EXPECT_TRUE(runLoopUntil([&] { return !daemon->onScreen.empty(); })) << "the message comes again";
    settle();
    const auto number = daemon->onScreen.rbegin()->first;
    findPanel();
    EXPECT_TRUE(runLoopUntil([&] { return !daemon->onScreen.contains(number); })) << "and is taken back";
}

INSTANTIATE_TEST_SUITE_P(Each, MisbehavingNotifications,
                         testing::Combine(testing::ValuesIn(steps), testing::ValuesIn(misbehaviours)),
                         [](const auto& each) {
                             return std::string{names[static_cast<std::size_t>(std::get<1>(each.param))]} + "At" +
                                    std::get<0>(each.param).method;
                         });

} // namespace
} // namespace platform::linux
