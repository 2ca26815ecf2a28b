#include "platform/linux/Places.hpp"

#include <glib.h>
#include <sys/auxv.h>

#include <cerrno>
#include <system_error>

namespace platform::linux {

namespace fs = std::filesystem;

namespace {

/// Whether the dynamic loader was started, with this program as its argument. Then the loader is what the kernel
/// knows as the running executable.
bool isLoadersArgument() { return getauxval(AT_BASE) == 0; }

} // namespace

Places Places::ofThisProcess() { return ofProgram(executable()); }

Places Places::ofProgram(const fs::path& program) {
    const fs::path folder = program.parent_path();
    return {(folder / MARVELODE_RESOURCES_FROM_PROGRAM).lexically_normal(),
            (folder / MARVELODE_HELPERS_FROM_PROGRAM).lexically_normal(),
            fs::path{g_get_user_config_dir()} / "marvelode-timer" / "settings"};
}

fs::path executable(const char* link) {
    std::error_code error;
    const fs::path file =
        isLoadersArgument() ? fs::canonical(program_invocation_name, error) : fs::read_symlink(link, error);
    return error ? fs::path{MARVELODE_INSTALLED_PROGRAM} : file;
}

} // namespace platform::linux
