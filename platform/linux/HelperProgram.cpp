#include "platform/linux/HelperProgram.hpp"

#include "platform/linux/glib/Handles.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <utility>

namespace platform::linux {
namespace {

/// The addresses of the texts, as the system wants them; good for as long as the texts are.
std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

} // namespace

HelperProgram::HelperProgram(std::filesystem::path path, SessionEnvironment& session)
    : _path{std::move(path)}
    , _session{session}
    , _file{open(_path.c_str(), O_PATH | O_CLOEXEC)} {}

HelperProgram::~HelperProgram() {
    if (_file >= 0) {
        close(_file);
    }
}

HelperProgram::Started HelperProgram::start(const Run& run) const {
    if (_file >= 0) {
        // by this process's own number, since a script is opened once more after its descriptor is closed there
        Started started = start("/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(_file), run);
        if (started.process != 0) {
            return started;
        }
    }
    return start(_path.string(), run);
}

HelperProgram::Started HelperProgram::start(const std::string& file, const Run& run) const {
    std::vector<std::string> words{file, _path.string()};
    words.insert(words.end(), run.arguments.begin(), run.arguments.end());
    std::vector<std::string> environment = _session.forHelpers();
    environment.insert(environment.end(), run.variables.begin(), run.variables.end());
    constexpr auto flags = static_cast<GSpawnFlags>(G_SPAWN_DO_NOT_REAP_CHILD | G_SPAWN_LEAVE_DESCRIPTORS_OPEN |
                                                    G_SPAWN_FILE_AND_ARGV_ZERO | G_SPAWN_STDOUT_TO_DEV_NULL);
    GPid process = 0;
    ErrorSlot error;
    g_spawn_async_with_fds(nullptr, pointersTo(words).data(), pointersTo(environment).data(), flags, nullptr,
                           nullptr, &process, run.input, -1, run.errors, error.out());
    return {process, error.message()};
}

} // namespace platform::linux
