// Preloaded into a program, lets it start the first MOST_THREADS threads, and no other.

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <string>

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the library's names for them are reserved ones
extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*),
                              void* data) {
    // NOLINTEND(readability-inconsistent-declaration-parameter-name)
    static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    static const int most = std::stoi(std::getenv("MOST_THREADS"));
    static std::atomic<int> started{0};
    return ++started > most ? EAGAIN : real(thread, attributes, run, data);
}
