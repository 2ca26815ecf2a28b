#include "platform/Timer.hpp"

#include "tests/components/Bench.hpp"

namespace bench {
namespace {

using platform::Timer;

class ATimer : public Bench {
protected:
    std::shared_ptr<Timer> current;

    /// A one-shot timer, not due for a minute.
    static std::shared_ptr<Timer> pending(Timer::Action action) {
        return Timer::scheduledTimer(60, std::move(action), {}, false);
    }
};

TEST_F(ATimer, EndsAfterItsActionWhenItsOwnerHasReplacedItAndLeavesTheNewOne) {
    current = pending([this](const auto&) { current = pending([](const auto&) {}); });
    const std::shared_ptr<Timer> first = current;
    Timer::fire(current);
    EXPECT_FALSE(first->isValid());
    EXPECT_TRUE(current->isValid());
}

TEST_F(ATimer, OutlivesTheLastOwnerThatLetsGoOfItInItsAction) {
    bool wasValid = false;
    desktop.launch();
    desktop.perform([&] {
        current = pending([&](const std::shared_ptr<Timer>& fired) {
            current->invalidate();
            current = nullptr;
            wasValid = fired->isValid();
        });
    });
    desktop.wait(1min);
    EXPECT_EQ(current, nullptr);
    EXPECT_FALSE(wasValid);
    desktop.losePower();
}

TEST_F(ATimer, DestroysItsActionWhenItIsInvalidated) {
    const auto owned = std::make_shared<int>();
    current = pending([owned](const auto&) {});
    EXPECT_EQ(owned.use_count(), 2);
    current->invalidate();
    EXPECT_EQ(owned.use_count(), 1);
}

} // namespace
} // namespace bench
