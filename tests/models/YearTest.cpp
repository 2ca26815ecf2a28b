// A year in the life of the program, which must leave no trace in its memory.

#include "tests/stories/StoryDesktop.hpp"
#include "tests/support/Sanitizers.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<long> liveAllocations{0};

} // namespace

#ifndef MODELS_ARE_SANITIZED // a sanitizer counts by itself, and brings its own operators

namespace {

// NOLINTBEGIN(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory): what `new` itself is made of
void* allocate(std::size_t size) {
    if (void* memory = std::malloc(size)) {
        ++liveAllocations;
        return memory;
    }
    throw std::bad_alloc{};
}

void release(void* memory) noexcept {
    if (memory) {
        --liveAllocations;
        std::free(memory);
    }
}
// NOLINTEND(cppcoreguidelines-no-malloc,cppcoreguidelines-owning-memory)

} // namespace

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void operator delete(void* memory) noexcept { release(memory); }
void operator delete[](void* memory) noexcept { release(memory); }
void operator delete(void* memory, std::size_t) noexcept { release(memory); }
void operator delete[](void* memory, std::size_t) noexcept { release(memory); }

#endif

namespace story {
namespace {

constexpr int days = models::isSanitized ? 7 : 365;
constexpr int intervalsADay = 144;

/// One work interval with whatever the user does that time. Returns the number of reminders seen.
int interval(StoryDesktop& desktop, int number) {
    int reminders = 1;
    if (number % 50 == 0) { // a nap
        desktop.wait(4min);
        desktop.sleepAndWake(1h);
    }
    desktop.wait(10min);
    if (number % 3 == 0) {
        for (int snoozes = 0; snoozes < number % 4; ++snoozes, ++reminders) {
            desktop.click("Snooze");
            desktop.wait(1min);
        }
    }
    if (number % 100 == 0) { // asleep while the reminder is up
        desktop.sleepAndWake(8h);
    }
    desktop.click("Restart");
    return reminders;
}

/// A day of intervals; every reminder is seen and heard.
void day(StoryDesktop& desktop) {
    for (int number = 0; number < intervalsADay; ++number) {
        const int reminders = interval(desktop, number);
        ASSERT_EQ(desktop.heard().size(), static_cast<std::size_t>(reminders));
        ASSERT_EQ(desktop.state(), AppState::Timing);
        ASSERT_EQ(desktop.title(), "11m");
    }
    desktop.journal();
}

TEST(AYear, OfWorkLosesNoReminderAndNoMemory) {
    StoryDesktop desktop;
    desktop.hadAFirstRun();
    desktop.launch();
    day(desktop); // fills every buffer once
    const long afterTheFirstDay = liveAllocations;
    for (int number = 1; number < days; ++number) {
        day(desktop);
        if (testing::Test::HasFatalFailure()) {
            return;
        }
    }
    EXPECT_EQ(liveAllocations, afterTheFirstDay);
    EXPECT_GT(desktop.uptime(), 24h * days);
}

} // namespace
} // namespace story
