// Preloaded into a program, makes its alarm ring forty times sooner than it asks for.

#include <unistd.h>

extern "C" unsigned alarm(unsigned seconds) noexcept {
    constexpr unsigned microseconds = 25'000;
    return ualarm(seconds * microseconds, 0);
}
