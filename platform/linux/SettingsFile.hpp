#pragma once

// The settings as a text file that its user may edit at any time: a key file whose values are typed by the way they
// are written (`true`, `25`, `1500.0`, `'Sonar'`). It is read again whenever it has changed and replaced as a
// whole.

#include "platform/UserDefaults.hpp"
#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/glib/Handles.hpp"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform::linux {

class SettingsFile {
public:
    using Values = std::map<std::string, DefaultsValue, std::less<>>;

    /// Opens the settings at `path`, which need not exist. A problem is reported to `errorLog` once, when it
    /// begins. `assumed` are the values in place of those in a file that is there but could not be read since the
    /// start; they are stored if the file is then removed, or turns out to be damaged and is kept aside.
    SettingsFile(std::filesystem::path path, ErrorLog& errorLog, Values assumed = {});

    /// Tries once more to write what could not be written before.
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Removes what a write that was killed has left in the folder. No other program may be writing these settings.
    void clearUp() const;

    /// The value under `key`, as the file has it now; nothing if there is none. A value that cannot be written yet
    /// is ahead of the file's, and is written as soon as it can be.
    std::optional<DefaultsValue> value(std::string_view key);

    /// Stores `value`, keeping everything else in the file. Touches no disk if the file holds it already.
    void set(DefaultsValue value, std::string_view key);

    /// The problem at hand; empty if there is none.
    const std::string& problem() const { return _reported; }

    /// What stands under `key` in the group of the desktop's own settings, quotes and all; nothing if there is no
    /// such key. It is never written here, and is as it was when `value` was asked for last.
    std::optional<std::string> desktopText(const char* key) const;

    /// How many times the file was read; while that stays the same, so do the desktop's own settings.
    unsigned readings() const { return _readings; }

    /// Another number each time the values may have become others, by `set` or by what `value` found in the file.
    unsigned state() const { return _state; }

private:
    /// What is known of the values in the file: nothing was asked yet; it is there but was never read; all.
    enum class Knowledge { None, Lacking, Full };

    /// What tells one state of a file from another; all zero if there is no file.
    struct Fingerprint {
        std::uint64_t device = 0;
        std::uint64_t inode = 0;
        std::int64_t size = 0;
        std::int64_t seconds = 0;
        std::int64_t nanoseconds = 0;
        bool operator==(const Fingerprint&) const = default;
    };
    using KeyFileHandle = std::unique_ptr<GKeyFile, Release<g_key_file_unref>>;

    void readIfChanged();
    bool isTimeForAnotherAttempt() const;
    void read();
    void cannotRead(const std::string& reason);
    void assume();
    bool hasUnwritten() const { return !_unwritten.empty() || !_standIns.empty(); }
    void keepAside(const std::filesystem::path& file, const std::string& reason);
    void write();
    void parseValues();
    Fingerprint fingerprint() const;
    void report(const std::string& problem, const std::string& reason);

    std::filesystem::path _path;
    ErrorLog& _errorLog;
    const Values _assumed;
    Knowledge _knowledge = Knowledge::None;
    KeyFileHandle _file;
    unsigned _readings = 0;
    unsigned _state = 0;
    std::optional<Fingerprint> _seen; // of the file as it was last read or written
    Values _stored;                   // what is in `_file`, parsed: read every second, changed hardly ever
    Values _standIns;                 // assumed values, for a file that went unread; not written yet
    Values _unwritten;
    std::int64_t _lastAttempt = 0; // monotonic microseconds
    bool _mayWrite = true;         // false: the file is there but cannot be read, so it must not be replaced
    std::string _reported;         // the problem at hand
};

} // namespace platform::linux
