#include "platform/linux/Places.hpp"

#include "platform/linux/glib/Handles.hpp"

#include <glib.h>
#include <sys/auxv.h>

#include <cerrno>
#include <cstdlib>

namespace platform::linux {

namespace fs = std::filesystem;

namespace {

/// Whether the dynamic loader was started, with this program as its argument. Then the loader is what the kernel
/// knows as the running executable.
bool isLoadersArgument() { return getauxval(AT_BASE) == 0; }

/// Without dots, so that it reads well.
fs::path plain(const fs::path& path) { return TextHandle{g_canonicalize_filename(path.c_str(), nullptr)}.get(); }

} // namespace

Places Places::ofThisProcess() { return ofProgram(executable()); }

Places Places::ofProgram(const fs::path& program) {
    const fs::path folder = program.parent_path();
    return {plain(folder / MARVELODE_RESOURCES_FROM_PROGRAM), plain(folder / MARVELODE_HELPERS_FROM_PROGRAM),
            fs::path{g_get_user_config_dir()} / "marvelode-timer" / "settings"};
}

fs::path executable(const char* link) {
    const TextHandle file{isLoadersArgument() ? realpath(program_invocation_name, nullptr)
                                              : g_file_read_link(link, nullptr)};
    return file ? file.get() : MARVELODE_INSTALLED_PROGRAM;
}

} // namespace platform::linux
