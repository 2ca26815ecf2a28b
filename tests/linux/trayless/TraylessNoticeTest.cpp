// What the user is told where no panel shows the status item, with a stand-in for the notification area. The
// patience with panels that come late is waited out.

#include "platform/linux/trayless/TraylessNotice.hpp"

#include "tests/support/NotificationDaemon.hpp"

#include <gmock/gmock.h>

#include <string>
#include <vector>

namespace platform::linux {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

struct Notice final : StandInWindow {
    explicit Notice(GDBusConnection* bus)
        : notice{bus, *this, [this](std::string_view entry) { calls.push_back("pick " + std::string{entry}); },
                 token} {
        notice.offer({"Restart timer", "Settings", "Quit"});
    }

    void appear() override { calls.emplace_back("appear"); }
    void close() override { calls.emplace_back("close"); }
    void open() override { calls.emplace_back("open"); }

    std::vector<std::string> calls;
    ActivationToken token;
    TraylessNotice notice;
};

class TraylessNoticeTest : public testing::Test {
protected:
    ObjectHandle<GDBusConnection> bus = connectToSession();
    NotificationDaemon daemon;
    Notice user{bus.get()};
};

TEST_F(TraylessNoticeTest, TellsWhereToFindTheTimerAndOffersTheMenusMainActions) {
    user.notice.trayChanged(false);
    ASSERT_TRUE(runLoopUntil([&] { return daemon.shows == 1; }));
    EXPECT_THAT(user.calls, ElementsAre("appear"));
    const auto& [number, message] = *daemon.onScreen.begin();
    EXPECT_EQ(message.summary, "Marvelode Timer is running");
    EXPECT_THAT(message.actions,
                ElementsAre(Pair("default", "Show the timer"), Pair("Restart timer", "Restart timer"),
                            Pair("Settings", "Settings"), Pair("Quit", "Quit")));

    for (const auto& [key, label] : message.actions) {
        daemon.choose(number, key.c_str());
    }
    EXPECT_TRUE(runLoopUntil([&] { return user.calls.size() == 5; }));
    EXPECT_THAT(user.calls, ElementsAre("appear", "open", "pick Restart timer", "pick Settings", "pick Quit"));
}

TEST_F(TraylessNoticeTest, TakesItsMessageBackWhenAPanelAppears) {
    user.notice.trayChanged(false);
    ASSERT_TRUE(runLoopUntil([&] { return daemon.shows == 1; }));
    user.notice.trayChanged(true);
    user.notice.trayChanged(true);
    EXPECT_THAT(user.calls, ElementsAre("appear", "close"));
    EXPECT_TRUE(runLoopUntil([&] { return daemon.onScreen.empty(); }));
}

TEST_F(TraylessNoticeTest, SaysNothingWhereThereIsAPanelOrOneComesSoon) {
    Notice lucky{bus.get()};
    Notice patient{bus.get()};
    lucky.notice.trayChanged(true);
    patient.notice.trayChanged(false);
    user.notice.trayChanged(false);
    patient.notice.trayChanged(true);
    ASSERT_TRUE(runLoopUntil([&] { return daemon.shows == 1; }));
    EXPECT_THAT(user.calls, ElementsAre("appear"));
    EXPECT_THAT(lucky.calls, IsEmpty());
    EXPECT_THAT(patient.calls, IsEmpty());
}

TEST_F(TraylessNoticeTest, EndsWhileItIsStillWaiting) {
    {
        Notice brief{bus.get()};
        brief.notice.trayChanged(false);
    }
    user.notice.trayChanged(false);
    ASSERT_TRUE(runLoopUntil([&] { return daemon.shows > 0; }));
    EXPECT_EQ(daemon.shows, 1);
}

} // namespace
} // namespace platform::linux
