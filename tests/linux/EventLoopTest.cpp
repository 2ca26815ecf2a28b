#include "platform/linux/EventLoop.hpp"

#include <gtest/gtest.h>

#include <memory>
#include <utility>

namespace platform::linux {
namespace {

TEST(Loop, LetsGoOfWhatIsLeftUndoneAtItsEnd) {
    EventLoop loop{[] { return RunLoopMode::Default; }, [] {}};
    bool isDone = false;
    auto waiting = std::make_shared<int>();
    const std::weak_ptr<int> caller = waiting;
    loop.post([&] { loop.quit(); });
    loop.post([&isDone, waiting = std::move(waiting)] { isDone = true; });
    loop.run();
    EXPECT_TRUE(caller.expired()) << "it waits for an answer still";
    EXPECT_FALSE(isDone);
}

} // namespace
} // namespace platform::linux
