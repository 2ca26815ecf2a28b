// The end of the resident program, as it is shipped, by a mistake of its own. The C++ library's words for it are 70
// KB that would stay in memory as long as the program. With debug symbols, a core dump tells more.

#include <unistd.h>

#include <cstdlib>
#include <exception>
#include <string_view>

namespace {

[[noreturn]] void endByMistake(std::string_view mistake) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, mistake.data(), mistake.size());
    std::abort();
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,*-std-namespace-modification,misc-use-internal-linkage)

namespace __gnu_cxx {

void __verbose_terminate_handler() { endByMistake("marvelode-timer: an exception that nobody catches\n"); }

} // namespace __gnu_cxx

namespace std {

void __glibcxx_assert_fail(const char*, int, const char*, const char*) noexcept {
    endByMistake("marvelode-timer: a check of the C++ library has failed\n");
}

} // namespace std

// NOLINTEND(bugprone-reserved-identifier,*-std-namespace-modification,misc-use-internal-linkage)
