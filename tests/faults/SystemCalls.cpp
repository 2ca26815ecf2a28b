#include "tests/faults/SystemCalls.hpp"

#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>

namespace faults {
namespace {

constexpr int stopOfCall = SIGTRAP | 0x80; // as PTRACE_O_TRACESYSGOOD marks it

bool isEventStop(int status) { return status >> 16 != 0; }

/// Lets the program go on to the next begin or end of a call, or whatever else stops it; returns how it stopped.
int stopAfter(pid_t process, int signal) {
    EXPECT_EQ(ptrace(PTRACE_SYSCALL, process, nullptr, signal), 0) << std::strerror(errno);
    int status = 0;
    EXPECT_EQ(waitpid(process, &status, __WALL), process);
    return status;
}

/// The number of the call at whose begin the program has stopped; nothing if it has stopped elsewhere.
std::optional<std::uint64_t> begunCall(pid_t process) {
    __ptrace_syscall_info call{};
    const bool isKnown = ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof call, &call) > 0;
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-union-access): the kernel's way of telling
    return isKnown && call.op == PTRACE_SYSCALL_INFO_ENTRY ? std::optional{call.entry.nr} : std::nullopt;
}

/// Leaves out what the preloaded library asks, and clocks, which are calls only on few machines.
bool isOfThePrograms(std::optional<std::uint64_t> call) {
    return call && call != SYS_getpid && call != SYS_clock_gettime;
}

} // namespace

std::vector<std::uint64_t> nextSystemCalls(pid_t process, std::size_t count) {
    std::vector<std::uint64_t> calls;
    int status = 0;
    if (ptrace(PTRACE_SEIZE, process, nullptr, PTRACE_O_TRACESYSGOOD) != 0 ||
        ptrace(PTRACE_INTERRUPT, process, nullptr, nullptr) != 0 || waitpid(process, &status, __WALL) != process) {
        ADD_FAILURE() << "cannot look at the program: " << std::strerror(errno);
        return calls;
    }
    while (calls.size() < count && WIFSTOPPED(status)) {
        const bool isSignal = WSTOPSIG(status) != stopOfCall && !isEventStop(status);
        status = stopAfter(process, isSignal ? WSTOPSIG(status) : 0);
        if (const auto call = WIFSTOPPED(status) ? begunCall(process) : std::nullopt; isOfThePrograms(call)) {
            calls.push_back(*call);
        }
    }
    ptrace(PTRACE_DETACH, process, nullptr, nullptr);
    return calls;
}

} // namespace faults
