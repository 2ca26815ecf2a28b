// Preloaded into the resident program: counts its calls to the system, makes one of them fail as a `FaultPlan`
// says, and sets its clocks ahead. Programs that it starts are left alone.

#include "tests/faults/FaultPlan.hpp"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string_view>

namespace {

using faults::FaultPlan;
using faults::Kind;

FaultPlan* plan = nullptr; // of this process; none if it is not meant
pid_t owner = 0;           // which a child between its fork and its program is not

/// Counts a call; whether it is the one to fail.
bool isItsTurn(Kind kind) {
    if (!plan || getpid() != owner) {
        return false;
    }
    const int number = ++plan->calls[static_cast<std::size_t>(kind)];
    return plan->kind == kind && plan->number == number;
}

/// The same for calls that report errors; the error is set.
bool fails(Kind kind) {
    if (!isItsTurn(kind)) {
        return false;
    }
    errno = plan->error;
    return true;
}

/// The function of that name that would have been called without this library.
template <typename Function>
Function* next(const char* name, Function* /* for its type */) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

bool isFile(int descriptor) {
    struct stat status{};
    return plan && fstatat(descriptor, "", &status, AT_EMPTY_PATH) == 0 && S_ISREG(status.st_mode);
}

/// Whether the kernel tells there of this process; where it does not, the program looks for its files where it is
/// installed, which it is not in a test.
bool isOfProcess(std::string_view path) { return path.starts_with("/proc/self/"); }

/// How many of `count` bytes to read or write; nothing if that is to fail.
std::size_t allowed(Kind kind, int descriptor, std::size_t count) {
    if (!isFile(descriptor) || !isItsTurn(kind)) {
        return count;
    }
    errno = plan->error;
    return plan->error == faults::shortOfAll ? std::min<std::size_t>(count, 1) : 0;
}

bool memoryFails(std::size_t size) {
    constexpr std::size_t large = 8192; // where the program has its allocations mapped
    const bool isMapped = size >= large && fails(Kind::Map);
    return fails(Kind::Memory) || isMapped;
}

/// How much later it is by that clock than in truth.
std::int64_t secondsAhead(clockid_t clock) {
    if (!plan || (clock != CLOCK_REALTIME && clock != CLOCK_MONOTONIC && clock != CLOCK_BOOTTIME)) {
        return 0;
    }
    return plan->secondsPassed + (clock == CLOCK_MONOTONIC ? 0 : plan->secondsAsleep.load()) +
           (clock == CLOCK_REALTIME ? plan->secondsSet.load() : 0);
}

struct Loaded {
    Loaded() {
        const char* path = std::getenv(faults::planVariable);
        const int file = path && std::string_view{program_invocation_short_name} == "marvelode-timer"
                             ? ::open(path, O_RDWR | O_CLOEXEC)
                             : -1;
        if (file < 0) {
            return;
        }
        void* memory = ::mmap(nullptr, sizeof(FaultPlan), PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
        ::close(file);
        owner = getpid();
        plan = static_cast<FaultPlan*>(memory);
    }
} loaded;

} // namespace

// NOLINTBEGIN(bugprone-macro-parentheses,bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* old, std::size_t size);

#define OPENS(name)                                                                                                \
    int name(const char* path, int flags, ...) {                                                                   \
        static const auto real = next(#name, &name);                                                               \
        va_list rest;                                                                                              \
        va_start(rest, flags);                                                                                     \
        const mode_t mode = va_arg(rest, mode_t);                                                                  \
        va_end(rest);                                                                                              \
        return fails(Kind::Open) ? -1 : real(path, flags, mode);                                                   \
    }
OPENS(open)
OPENS(open64)

#define OPENS_AT(name)                                                                                             \
    int name(int folder, const char* path, int flags, ...) {                                                       \
        static const auto real = next(#name, &name);                                                               \
        va_list rest;                                                                                              \
        va_start(rest, flags);                                                                                     \
        const mode_t mode = va_arg(rest, mode_t);                                                                  \
        va_end(rest);                                                                                              \
        return fails(Kind::Open) ? -1 : real(folder, path, flags, mode);                                           \
    }
OPENS_AT(openat)
OPENS_AT(openat64)

#define OPENS_STREAM(name)                                                                                         \
    FILE* name(const char* path, const char* mode) {                                                               \
        static const auto real = next(#name, &name);                                                               \
        return fails(Kind::Open) ? nullptr : real(path, mode);                                                     \
    }
OPENS_STREAM(fopen)
OPENS_STREAM(fopen64)

#define TAKES_STATUS(name, type)                                                                                   \
    int name(const char* path, type* status) noexcept {                                                            \
        static const auto real = next(#name, &name);                                                               \
        return !isOfProcess(path) && fails(Kind::Status) ? -1 : real(path, status);                                \
    }
TAKES_STATUS(stat, struct stat)
TAKES_STATUS(stat64, struct stat64)
TAKES_STATUS(lstat, struct stat)
TAKES_STATUS(lstat64, struct stat64)

ssize_t read(int descriptor, void* bytes, std::size_t count) {
    static const auto real = next("read", &read);
    const std::size_t most = allowed(Kind::Read, descriptor, count);
    return most == 0 && count != 0 ? -1 : real(descriptor, bytes, most);
}

ssize_t write(int descriptor, const void* bytes, std::size_t count) {
    static const auto real = next("write", &write);
    const std::size_t most = allowed(Kind::Write, descriptor, count);
    return most == 0 && count != 0 ? -1 : real(descriptor, bytes, most);
}

int close(int descriptor) {
    static const auto real = next("close", &close);
    const bool isToFail = isFile(descriptor) && isItsTurn(Kind::Close);
    const int result = real(descriptor);
    if (isToFail) {
        errno = plan->error;
    }
    return isToFail ? -1 : result;
}

int fsync(int descriptor) {
    static const auto real = next("fsync", &fsync);
    return fails(Kind::Sync) ? -1 : real(descriptor);
}

int rename(const char* from, const char* to) noexcept {
    static const auto real = next("rename", &rename);
    return fails(Kind::Rename) ? -1 : real(from, to);
}

int socket(int domain, int type, int protocol) noexcept {
    static const auto real = next("socket", &socket);
    return fails(Kind::Descriptor) ? -1 : real(domain, type, protocol);
}

int socketpair(int domain, int type, int protocol, int ends[2]) noexcept {
    static const auto real = next("socketpair", &socketpair);
    return fails(Kind::Descriptor) ? -1 : real(domain, type, protocol, ends);
}

int pipe2(int ends[2], int flags) noexcept {
    static const auto real = next("pipe2", &pipe2);
    return fails(Kind::Descriptor) ? -1 : real(ends, flags);
}

int eventfd(unsigned count, int flags) noexcept {
    static const auto real = next("eventfd", &eventfd);
    return fails(Kind::Descriptor) ? -1 : real(count, flags);
}

ssize_t send(int descriptor, const void* bytes, std::size_t size, int flags) {
    static const auto real = next("send", &send);
    return fails(Kind::Send) ? -1 : real(descriptor, bytes, size, flags);
}

ssize_t sendmsg(int descriptor, const msghdr* message, int flags) {
    static const auto real = next("sendmsg", &sendmsg);
    return fails(Kind::Send) ? -1 : real(descriptor, message, flags);
}

ssize_t recv(int descriptor, void* bytes, std::size_t size, int flags) {
    static const auto real = next("recv", &recv);
    return fails(Kind::Receive) ? -1 : real(descriptor, bytes, size, flags);
}

ssize_t recvmsg(int descriptor, msghdr* message, int flags) {
    static const auto real = next("recvmsg", &recvmsg);
    return fails(Kind::Receive) ? -1 : real(descriptor, message, flags);
}

int poll(pollfd* descriptors, nfds_t count, int milliseconds) {
    static const auto real = next("poll", &poll);
    return fails(Kind::Poll) ? -1 : real(descriptors, count, milliseconds);
}

pid_t fork() noexcept {
    static const auto real = next("fork", &fork);
    return fails(Kind::Spawn) ? -1 : real();
}

#define SPAWNS(name)                                                                                               \
    int name(pid_t* process, const char* path, const posix_spawn_file_actions_t* actions,                          \
             const posix_spawnattr_t* attributes, char* const arguments[], char* const environment[]) {            \
        static const auto real = next(#name, &name);                                                               \
        return isItsTurn(Kind::Spawn) ? plan->error.load()                                                         \
                                      : real(process, path, actions, attributes, arguments, environment);          \
    }
SPAWNS(posix_spawn)
SPAWNS(posix_spawnp)

int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* data) noexcept {
    static const auto real = next("pthread_create", &pthread_create);
    return isItsTurn(Kind::Thread) ? plan->error.load() : real(thread, attributes, run, data);
}

void* mmap(void* address, std::size_t size, int protection, int flags, int descriptor, off_t offset) noexcept {
    static const auto real = next("mmap", &mmap);
    return fails(Kind::Map) ? MAP_FAILED : real(address, size, protection, flags, descriptor, offset);
}

void* malloc(std::size_t size) noexcept { return memoryFails(size) ? nullptr : __libc_malloc(size); }

void* calloc(std::size_t count, std::size_t size) noexcept {
    return memoryFails(count * size) ? nullptr : __libc_calloc(count, size);
}

void* realloc(void* old, std::size_t size) noexcept {
    return memoryFails(size) ? nullptr : __libc_realloc(old, size);
}

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static const auto real = next("clock_gettime", &clock_gettime);
    const int result = real(clock, time);
    time->tv_sec += secondsAhead(clock);
    return result;
}

int gettimeofday(timeval* time, void* zone) noexcept {
    static const auto real = next("gettimeofday", &gettimeofday);
    const int result = real(time, zone);
    time->tv_sec += secondsAhead(CLOCK_REALTIME);
    return result;
}

} // extern "C"
// NOLINTEND(bugprone-macro-parentheses,bugprone-reserved-identifier,readability-inconsistent-declaration-parameter-name)
