#pragma once

// Where the files of the program and of its user are. The program's own lie at fixed places relative to the
// executable, in an installation and in a build folder alike.

#include <filesystem>

namespace platform::linux {

struct Places {
    std::filesystem::path resources; ///< The folder of the program's own resources.
    std::filesystem::path helpers;   ///< The folder of the programs that show windows and play sounds.
    std::filesystem::path settings;  ///< The user's settings file.

    /// The places that belong to the program at that path, and to the user who runs this process.
    static Places ofProgram(const std::filesystem::path& program);

    /// The places that belong to the running executable and to the user who runs it.
    static Places ofThisProcess();
};

/// The running executable; where it would be installed if `link`, by which the kernel tells, cannot be read.
std::filesystem::path executable(const char* link = "/proc/self/exe");

} // namespace platform::linux
