// How the item is offered to panels that come, go and refuse.

#include "platform/linux/tray/Tray.hpp"

#include "tests/support/CollectedErrors.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/ShortSeconds.hpp"
#include "tests/support/TrayWatcher.hpp"

#include <gtest/gtest.h>

#include <cerrno>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

using namespace std::chrono_literals;

class TrayTest : public testing::Test {
protected:
    bool hasPresence(bool isPresent) {
        return runLoopUntil([&] { return !presences.empty() && presences.back() == isPresent; });
    }

    ObjectHandle<GDBusConnection> program = connectToSession();
    const std::string name = g_dbus_connection_get_unique_name(program.get());
    std::vector<std::string> hosts;
    CollectedErrors errorLog;
    const std::vector<std::string>& errors = errorLog.problems;
    std::vector<bool> presences;
    Tray tray{program.get(), [this](std::string_view host) { hosts.emplace_back(host); },
              [this](bool isPresent) { presences.push_back(isPresent); }, errorLog};
};

TEST_F(TrayTest, OffersTheItemToEachPanelThatAppears) {
    EXPECT_TRUE(hasPresence(false));
    for (std::size_t time = 1; time <= 3; ++time) {
        const TrayWatcher watcher;
        EXPECT_TRUE(runLoopUntil([&] { return !watcher.registered.empty(); }));
        EXPECT_EQ(watcher.registered, std::vector<std::string>{name});
        EXPECT_EQ(hosts.size(), time);
        EXPECT_EQ(hosts.back(), std::string{program_invocation_short_name}.substr(0, 15)) << "this very process";
    }
    EXPECT_TRUE(errors.empty());
}

TEST_F(TrayTest, IsNotPresentInAPanelThatRefusesAndSaysSoOnce) {
    const ShortSeconds seconds{1ms};
    const TrayWatcher watcher{false};
    EXPECT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    EXPECT_TRUE(hasPresence(false));
    runLoopFor(50ms);
    EXPECT_EQ(errors.size(), 1U);
    EXPECT_EQ(presences, std::vector{false});
}

TEST_F(TrayTest, OffersTheItemAgainToAPanelThatWasNotReady) {
    const ShortSeconds seconds{10ms};
    TrayWatcher watcher{false};
    EXPECT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    watcher.getReady();
    EXPECT_TRUE(hasPresence(true));
    EXPECT_EQ(watcher.registered, std::vector<std::string>{name});
}

TEST_F(TrayTest, OffersTheItemAgainAtOnceWhenAPanelRegisters) {
    TrayWatcher watcher{false};
    EXPECT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    watcher.getReady();
    watcher.setPanel(true);
    EXPECT_TRUE(hasPresence(true));
    EXPECT_EQ(watcher.registered, std::vector<std::string>{name});
}

TEST_F(TrayTest, IsPresentOnlyWhileTheWatcherHasAPanel) {
    TrayWatcher watcher;
    EXPECT_TRUE(hasPresence(true));
    watcher.setPanel(false);
    EXPECT_TRUE(hasPresence(false));
    watcher.setPanel(true);
    EXPECT_TRUE(hasPresence(true));
}

TEST_F(TrayTest, AsksOneQuestionAtATimeHoweverOftenPanelsComeAndGo) {
    constexpr int signals = 20'000;
    TrayWatcher watcher;
    EXPECT_TRUE(hasPresence(true));
    for (int count = 0; count < signals; ++count) {
        watcher.setPanel(count % 2 != 0);
    }
    watcher.setPanel(false);
    EXPECT_TRUE(hasPresence(false)) << "the last word counts";
    EXPECT_LT(watcher.questions, 20);
}

} // namespace
} // namespace platform::linux
