#pragma once

// A program that this one starts for a short while, such as to show a window. Its file is kept open from the
// beginning: what an upgrade of the package puts in its place may speak another protocol.

#include "platform/linux/SessionEnvironment.hpp"

#include <sys/types.h>

#include <filesystem>
#include <string>
#include <vector>

namespace platform::linux {

class HelperProgram {
public:
    /// What a run of the program gets.
    struct Run {
        std::vector<std::string> arguments{}; ///< After the program's name.
        std::vector<std::string> variables{}; ///< "NAME=value" each, in addition to the session's.
        int input = -1;                       ///< A descriptor for standard input; the null device if negative.
        int errors = -1;                      ///< One for standard error; this program's own if negative.
    };

    /// A process that was started, or the reason why that was impossible.
    struct Started {
        pid_t process = 0; ///< Belongs to the caller, who must reap it.
        std::string problem;
    };

    /// A program that cannot be opened is looked for anew at each start. `session` must outlive this object.
    HelperProgram(std::filesystem::path path, SessionEnvironment& session);
    ~HelperProgram();
    HelperProgram(const HelperProgram&) = delete;
    HelperProgram& operator=(const HelperProgram&) = delete;

    Started start(const Run& run) const;

    SessionEnvironment& session() const { return _session; }

private:
    Started start(const std::string& file, const Run& run) const;

    const std::filesystem::path _path;
    SessionEnvironment& _session;
    const int _file;
};

} // namespace platform::linux
