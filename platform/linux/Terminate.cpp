// The end of the resident program by a mistake of its own, without the C++ library's words for it: those are 70 KB
// that would stay in memory as long as the program. A core dump tells more.

#include <cstdlib>
#include <exception>

// NOLINTBEGIN(bugprone-reserved-identifier,*-std-namespace-modification,misc-use-internal-linkage)

namespace __gnu_cxx {

/// For an exception that nobody catches: memory has run out.
void __verbose_terminate_handler() { std::abort(); }

} // namespace __gnu_cxx

namespace std {

/// For a check of the library's that fails.
void __glibcxx_assert_fail(const char*, int, const char*, const char*) noexcept { abort(); }

} // namespace std

// NOLINTEND(bugprone-reserved-identifier,*-std-namespace-modification,misc-use-internal-linkage)
