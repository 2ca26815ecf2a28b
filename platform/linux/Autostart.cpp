#include "platform/linux/Autostart.hpp"

#include "platform/linux/RegularFile.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <unistd.h>

#include <cstddef>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace platform::linux {
namespace {

namespace fs = std::filesystem;

using KeyFile = std::unique_ptr<GKeyFile, Release<g_key_file_unref>>;

constexpr const char* entryGroup = G_KEY_FILE_DESKTOP_GROUP;
constexpr const char* execKey = G_KEY_FILE_DESKTOP_KEY_EXEC;
constexpr const char* tryExecKey = G_KEY_FILE_DESKTOP_KEY_TRY_EXEC;
constexpr const char* hiddenKey = G_KEY_FILE_DESKTOP_KEY_HIDDEN;
constexpr const char* enabledKey = "X-GNOME-Autostart-enabled"; // heeded by others as well

struct StoredEntry {
    KeyFile file;        ///< Nothing if there is none, or a problem.
    std::string problem; ///< Why what is there cannot be understood; empty if it can.
};

StoredEntry entryAt(const fs::path& path) {
    const FileContent content = readRegularFile(path);
    if (content.isMissing || !content.problem.empty()) {
        return {nullptr, content.problem};
    }
    KeyFile file{g_key_file_new()};
    ErrorSlot error;
    const auto flags = static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
    if (!content.bytes.empty() &&
        !g_key_file_load_from_data(file.get(), content.bytes.data(), content.bytes.size(), flags, error.out())) {
        return {nullptr, path.string() + ": " + error.message()};
    }
    return {std::move(file), {}};
}

std::string valueIn(GKeyFile* entry, const char* key) {
    const TextHandle text{g_key_file_get_string(entry, entryGroup, key, nullptr)};
    return text ? text.get() : "";
}

bool startsAProgram(GKeyFile* entry) { return entry && !valueIn(entry, execKey).empty(); }

/// Where the program's own word ends in what an entry executes, quotes included.
std::size_t endOfProgram(const std::string& command) {
    const bool isQuoted = command.starts_with('"');
    for (std::size_t index = isQuoted ? 1 : 0; index < command.size(); ++index) {
        if (command[index] == '\\') {
            ++index; // and what it stands before
        } else if (command[index] == (isQuoted ? '"' : ' ')) {
            return index + (isQuoted ? 1 : 0);
        }
    }
    return command.size();
}

std::string programOf(const std::string& command) {
    const TextHandle program{g_shell_unquote(command.substr(0, endOfProgram(command)).c_str(), nullptr)};
    return program ? program.get() : "";
}

/// Whether that is a program's whole path with no program there.
bool isGone(const std::string& program) { return program.starts_with('/') && access(program.c_str(), X_OK) != 0; }

bool namesProgramThatIsGone(GKeyFile* entry) {
    return isGone(valueIn(entry, tryExecKey)) || isGone(programOf(valueIn(entry, execKey)));
}

/// Has `entry` start the program that `original` starts, with its own arguments. Another program that it may start
/// that one by stays.
void takeProgram(GKeyFile* entry, GKeyFile* original) {
    const std::string command = valueIn(original, execKey);
    const std::string ownCommand = valueIn(entry, execKey);
    const std::string ownProgram = programOf(ownCommand);
    const std::string tried = valueIn(entry, tryExecKey);
    if (isGone(ownProgram) || ownProgram == tried) {
        const std::string joined =
            command.substr(0, endOfProgram(command)) + ownCommand.substr(endOfProgram(ownCommand));
        g_key_file_set_string(entry, entryGroup, execKey, joined.c_str());
    }
    if (!tried.empty()) {
        g_key_file_set_string(entry, entryGroup, tryExecKey, programOf(command).c_str());
    }
}

std::string textOf(GKeyFile* entry) {
    std::size_t length = 0;
    const TextHandle text{g_key_file_to_data(entry, &length, nullptr)};
    return {text.get(), length};
}

/// Whether nothing of the user's is lost with what is at `path`: a link to the installed entry, or a file that
/// differs from that in no more than the program's place.
bool isAsInstalled(const fs::path& path, const fs::path& installed) {
    std::error_code error;
    if (fs::is_symlink(path, error)) {
        return fs::equivalent(path, installed, error);
    }
    const KeyFile file = entryAt(path).file;
    const KeyFile original = entryAt(installed).file;
    if (!startsAProgram(file.get()) || !startsAProgram(original.get())) {
        return false;
    }
    takeProgram(file.get(), original.get());
    return textOf(file.get()) == textOf(original.get());
}

bool isMarkedOff(GKeyFile* entry) {
    const TextHandle mark{g_key_file_get_value(entry, entryGroup, enabledKey, nullptr)};
    return g_key_file_get_boolean(entry, entryGroup, hiddenKey, nullptr) ||
           (mark && mark.get() == std::string{"false"});
}

} // namespace

Autostart::Autostart(fs::path original, fs::path entry)
    : _original{std::move(original)}
    , _entry{std::move(entry)} {}

Autostart Autostart::ofThisUser(const fs::path& resources) {
    constexpr const char* name = "org.marvelode.Timer.desktop";
    return {resources / "autostart" / name, fs::path{g_get_user_config_dir()} / "autostart" / name};
}

bool Autostart::isOn() const {
    const KeyFile entry = entryAt(_entry).file;
    return startsAProgram(entry.get()) && !isMarkedOff(entry.get()) && !namesProgramThatIsGone(entry.get());
}

std::string Autostart::turnOn() const {
    if (isOn()) {
        return {};
    }
    const StoredEntry own = entryAt(_entry);
    const StoredEntry original = entryAt(_original);
    const std::string& problem = own.problem.empty() ? original.problem : own.problem;
    if (!problem.empty()) {
        return problem;
    }
    if (!startsAProgram(original.file.get()) || namesProgramThatIsGone(original.file.get())) {
        return (original.file ? "the program of " : "") + _original.string() + " is missing";
    }
    const bool isKept = startsAProgram(own.file.get());
    GKeyFile* const entry = isKept ? own.file.get() : original.file.get();
    if (namesProgramThatIsGone(entry)) {
        takeProgram(entry, original.file.get());
    }
    g_key_file_remove_key(entry, entryGroup, hiddenKey, nullptr);
    g_key_file_remove_key(entry, entryGroup, enabledKey, nullptr);
    return replaceRegularFile(_entry, textOf(entry));
}

std::string Autostart::turnOff() const {
    const StoredEntry own = entryAt(_entry);
    if (!own.file || isMarkedOff(own.file.get())) {
        return own.problem;
    }
    if (isAsInstalled(_entry, _original)) {
        std::error_code error;
        fs::remove(_entry, error);
        return error ? _entry.string() + ": " + error.message() : std::string{};
    }
    g_key_file_set_boolean(own.file.get(), entryGroup, hiddenKey, TRUE);
    return replaceRegularFile(_entry, textOf(own.file.get()));
}

} // namespace platform::linux
