// A process that was started is looked after to its end, and never waited for.

#include "platform/linux/HelperProcess.hpp"

#include <glib.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <functional>
#include <memory>
#include <optional>

namespace {

using namespace std::chrono_literals;

bool isImmortal = false;
int kills = 0;

} // namespace

/// Called in place of the function without the prefix; the linker sees to that.
// NOLINTBEGIN(bugprone-reserved-identifier): the linker's names
extern "C" int __real_kill(pid_t process, int number);
extern "C" int __wrap_kill(pid_t process, int number) {
    ++kills;
    return isImmortal ? 0 : __real_kill(process, number);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace platform::linux {
namespace {

class HelperProcessTest : public testing::Test {
protected:
    void TearDown() override {
        isImmortal = false;
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process or a zombie was left behind";
    }

    static pid_t started(const std::function<void()>& deed) {
        const pid_t process = fork();
        if (process == 0) {
            deed();
            _exit(7);
        }
        return process;
    }

    static void runUntil(const std::function<bool()>& happened) {
        const auto deadline = std::chrono::steady_clock::now() + 20s;
        while (!happened() && std::chrono::steady_clock::now() < deadline) {
            g_main_context_iteration(nullptr, FALSE);
            g_usleep(1000);
        }
        EXPECT_TRUE(happened());
    }

    static bool isGone(pid_t process) { return __real_kill(process, 0) != 0 && errno == ESRCH; }
};

TEST_F(HelperProcessTest, TellsItsStatusOnce) {
    std::optional<int> status;
    const HelperProcess process{started([] {}), [&](int told) { status = told; }};
    runUntil([&] { return status.has_value(); });
    EXPECT_EQ(WEXITSTATUS(*status), 7);
}

TEST_F(HelperProcessTest, TellsThatItWasKilled) {
    std::optional<int> status;
    const HelperProcess process{started([] { pause(); }), [&](int told) { status = told; }};
    process.kill();
    runUntil([&] { return status.has_value(); });
    EXPECT_EQ(WTERMSIG(*status), SIGKILL);
    process.kill(); // may be another program's number by now
}

TEST_F(HelperProcessTest, MayBeDestroyedAsItsEndIsTold) {
    bool wasTold = false;
    std::unique_ptr<HelperProcess> process;
    process = std::make_unique<HelperProcess>(started([] {}), [&](int) {
        process.reset();
        wasTold = true;
    });
    runUntil([&] { return wasTold; });
}

TEST_F(HelperProcessTest, IsKilledAndReapedWithItsObject) {
    const pid_t child = started([] { pause(); });
    {
        const HelperProcess process{child, [](int) { FAIL() << "told of its own doing"; }};
    }
    EXPECT_TRUE(isGone(child));
}

TEST_F(HelperProcessTest, IsKilledWithTheGroupThatItLeads) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    const pid_t leader = started([&] {
        setpgid(0, 0);
        if (fork() == 0) { // of which nobody else knows
            [[maybe_unused]] const ssize_t count = write(ends[1], "", 1);
        }
        pause();
    });
    close(ends[1]);
    char isThere = 0;
    EXPECT_EQ(read(ends[0], &isThere, 1), 1);
    pollfd allGone{ends[0], 0, 0}; // hangs up once nobody has the other end
    {
        std::optional<int> status;
        const HelperProcess process{leader, [&](int told) { status = told; }};
        process.kill();
        runUntil([&] { return status.has_value(); });
    }
    EXPECT_EQ(poll(&allGone, 1, 20'000), 1);
    close(ends[0]);
}

TEST_F(HelperProcessTest, IsNotKilledUnderANumberThatMayBeAnothersByNow) {
    const pid_t child = started([] {});
    {
        const HelperProcess process{child, [](int) {}};
        waitpid(child, nullptr, 0); // as GLib's thread does before the main loop hears of it
        kills = 0;
        process.kill();
    }
    EXPECT_EQ(kills, 0);
}

TEST_F(HelperProcessTest, IsNotWaitedForIfItDoesNotDie) {
    const pid_t child = started([] { pause(); });
    isImmortal = true; // as is a process that waits for a disk
    const auto begin = std::chrono::steady_clock::now();
    {
        const HelperProcess process{child, [](int) {}};
    }
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 5s);
    EXPECT_FALSE(isGone(child));
    isImmortal = false;
    __real_kill(child, SIGKILL);
    runUntil([&] { return isGone(child); });
}

} // namespace
} // namespace platform::linux
