#include "platform/linux/LinuxDesktop.hpp"

#include "platform/NSAlert.hpp"
#include "platform/NSStatusItem.hpp"
#include "platform/Timer.hpp"
#include "tests/support/BusSignals.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

class LinuxDesktopTest : public testing::Test {
protected:
    static std::shared_ptr<Timer> startTimer(TimeInterval seconds) {
        return Timer::scheduledTimer(seconds, [](const auto&) {}, {}, false);
    }

    /// Whose program for windows shows none, and ends in a moment.
    static std::filesystem::path folderOfHelpers(const TemporaryFolder& folder) {
        const auto program = folder.write("marvelode-timer-window", "#!/bin/sh\nsleep 0.2\n");
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
        return folder.path;
    }

    TemporaryFolder folder;
    ObjectHandle<GDBusConnection> bus = connectToSession();
    LinuxDesktop desktop{bus.get(), {folder.path, folderOfHelpers(folder), folder.path / "settings"}, {}};
};

TEST_F(LinuxDesktopTest, CountsToTheBreakByTheTimerThatWillFire) {
    EXPECT_FALSE(desktop.secondsUntilBreak());
    const auto interval = startTimer(600);
    EXPECT_NEAR(desktop.secondsUntilBreak().value(), 600, 5);
    const auto longer = startTimer(1200);
    EXPECT_NEAR(desktop.secondsUntilBreak().value(), 1200, 5);
}

TEST_F(LinuxDesktopTest, CountsABreakThatIsDueFromItsOwnMomentWhateverASnoozeAdds) {
    bool isDue = false;
    desktop.watchBreak([&] { return isDue; });
    const auto interval = startTimer(0.01);
    EXPECT_GT(desktop.secondsUntilBreak().value(), -1);
    isDue = true;
    const auto snooze = startTimer(60);
    runLoopFor(std::chrono::milliseconds{30});
    EXPECT_LT(desktop.secondsUntilBreak().value(), 0);
    isDue = false;
    EXPECT_NEAR(desktop.secondsUntilBreak().value(), 60, 5) << "the next interval has begun";
}

TEST_F(LinuxDesktopTest, AnnouncesTheMenuAsEnabledAgainWhenAnAlertHasClosed) {
    const auto menu = std::make_shared<NSMenu>();
    menu->addItem(std::make_shared<NSMenuItem>("Ask", [](NSMenuItem&) { NSAlert{}.runModal(); }, ""));
    const auto item = NSStatusBar::system().statusItemWithLength(50);
    const auto panel = connectToSession();
    BusSignals signals{panel.get(), bus.get(), "com.canonical.dbusmenu"};
    item->setMenu(menu);
    std::vector<std::string> seen;
    const auto hasSeen = [&](std::size_t count) {
        for (std::string& each : signals.take()) {
            seen.push_back(std::move(each));
        }
        return seen.size() >= count;
    };
    EXPECT_TRUE(runLoopUntil([&] { return hasSeen(1); })) << "the menu is not shown";
    seen.clear();
    desktop.pick("Ask");
    const auto entry = [](const char* isEnabled) {
        return std::string{"ItemsPropertiesUpdated([(1, {'label': <'Ask'>, 'enabled': <"} + isEnabled + ">})], [])";
    };
    EXPECT_TRUE(runLoopUntil([&] { return hasSeen(2); }));
    EXPECT_EQ(seen, (std::vector<std::string>{entry("false"), entry("true")}));
}

} // namespace
} // namespace platform::linux
