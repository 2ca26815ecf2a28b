#include "platform/linux/LinuxDesktop.hpp"

#include "platform/Timer.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace platform::linux {
namespace {

class LinuxDesktopTest : public testing::Test {
protected:
    static std::shared_ptr<Timer> startTimer(TimeInterval seconds) {
        return Timer::scheduledTimer(
            seconds, [](const auto&) {}, {}, false);
    }

    TemporaryFolder folder;
    ObjectHandle<GDBusConnection> bus = connectToSession();
    LinuxDesktop desktop{bus.get(), {folder.path, folder.path, folder.path / "settings"}, {}};
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

} // namespace
} // namespace platform::linux
