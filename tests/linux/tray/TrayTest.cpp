// How the item is offered to panels that come, go and refuse.

#include "platform/linux/tray/Tray.hpp"

#include "tests/support/CollectedErrors.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TrayWatcher.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <vector>

namespace platform::linux {
namespace {

class Panels : public testing::Test {
protected:
    ObjectHandle<GDBusConnection> program = connectToSession();
    const std::string name = g_dbus_connection_get_unique_name(program.get());
    std::vector<std::string> hosts;
    CollectedErrors errorLog;
    const std::vector<std::string>& errors = errorLog.problems;
    std::vector<bool> presences;
    Tray tray{program.get(), [this](std::string_view host) { hosts.emplace_back(host); },
              [this](bool isPresent) { presences.push_back(isPresent); }, errorLog};
};

TEST_F(Panels, AreOfferedTheItemEachTimeTheyAppear) {
    EXPECT_TRUE(runLoopUntil([&] { return presences == std::vector{false}; }));
    for (std::size_t time = 1; time <= 3; ++time) {
        const TrayWatcher watcher;
        EXPECT_TRUE(runLoopUntil([&] { return !watcher.registered.empty(); }));
        EXPECT_EQ(watcher.registered, std::vector<std::string>{name});
        EXPECT_EQ(hosts.size(), time);
        EXPECT_EQ(hosts.back(), std::string{program_invocation_short_name}.substr(0, 15)) << "this very process";
    }
    EXPECT_TRUE(errors.empty());
}

TEST_F(Panels, ThatRefuseAreToldToTheLogAndCountForNothing) {
    const auto bus = connectToSession();
    takeName(bus.get(), "org.kde.StatusNotifierWatcher"); // without the object that it should have
    EXPECT_TRUE(runLoopUntil([&] { return !errors.empty(); }));
    EXPECT_EQ(errors.size(), 1U);
    EXPECT_EQ(std::count(presences.begin(), presences.end(), true), 0);
}

TEST_F(Panels, ArePresentOnlyWhileTheirWatcherHasOne) {
    TrayWatcher watcher;
    EXPECT_TRUE(runLoopUntil([&] { return !presences.empty() && presences.back(); }));
    watcher.setHost(false);
    EXPECT_TRUE(runLoopUntil([&] { return !presences.back(); }));
    watcher.setHost(true);
    EXPECT_TRUE(runLoopUntil([&] { return presences.back(); }));
}

} // namespace
} // namespace platform::linux
