// What an exception that nobody catches comes to: only a want of memory throws here. The C++ library would put its
// name into words, by 45 KB of code that stays in memory with the program.

#include <cstdlib>

namespace __gnu_cxx { // NOLINT(bugprone-reserved-identifier): the library's own name for it

[[noreturn]] void __verbose_terminate_handler() { std::abort(); } // NOLINT(bugprone-reserved-identifier): the same

} // namespace __gnu_cxx
