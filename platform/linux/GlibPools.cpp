// Up to version 2.74 GLib keeps what was freed in pools, a tenth of this program's memory. The environment alone
// can switch them off, and GLib asks it before `main` begins; but it asks this program, whose functions come ahead
// of the C library's.

#include <unistd.h>

#include <cstdlib>
#include <string_view>

extern "C" char* getenv(const char* name) noexcept {
    const std::string_view wanted = name;
    for (char** each = environ; *each; ++each) {
        char* const variable = *each;
        const std::string_view text = variable;
        if (text.starts_with(wanted) && text.substr(wanted.size()).starts_with('=')) {
            return variable + wanted.size() + 1;
        }
    }
    static char withoutPools[] = "always-malloc";
    return wanted == "G_SLICE" ? withoutPools : nullptr;
}
