// Preloaded into a program, makes it wait for the folder of its helper programs, as for one that lies far away.

#include <dlfcn.h>
#include <sys/types.h>
#include <unistd.h>

#include <cstdarg>
#include <string_view>

namespace {

void waitFor(const char* path) {
    constexpr unsigned microseconds = 700'000;
    if (std::string_view{path}.find("/libexec/") != std::string_view::npos) {
        usleep(microseconds);
    }
}

template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

extern "C" int open(const char* path, int flags, ...) {
    std::va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    waitFor(path);
    return next<int(const char*, int, ...)>("open")(path, flags, mode);
}

// NOLINTNEXTLINE(bugprone-reserved-identifier): the C library's name for it when arguments are checked
extern "C" int __open_2(const char* path, int flags) {
    waitFor(path);
    return next<int(const char*, int)>("__open_2")(path, flags);
}
