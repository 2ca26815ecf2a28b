#pragma once

// The settings that belong to the Linux desktop alone: the group [Desktop] of the settings file, which its user
// writes by hand and which this program only reads. What makes no sense counts as not set.

#include "platform/linux/ErrorLog.hpp"
#include "platform/linux/SettingsFile.hpp"

#include <chrono>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace platform::linux {

/// All of them, as not set.
struct DesktopValues {
    /// What reminders are held back by.
    enum class Cause { DoNotDisturb, Locked, FullScreen };

    std::set<Cause> holdWhile;
    std::vector<std::string> holdCommand;                   ///< A program and its arguments; empty for none.
    std::optional<std::chrono::seconds> restartAfterLocked; ///< At least a second.
    std::optional<double> volume;                           ///< From 0 to 1.

    bool canHold() const { return !holdWhile.empty() || !holdCommand.empty(); }
};

class DesktopSettings {
public:
    /// Reads from `file`, which must outlive this object. `errorLog` is told of each value that makes no sense,
    /// once.
    DesktopSettings(const SettingsFile& file, ErrorLog& errorLog);

    /// The values as `file` was read last; touches no disk.
    const DesktopValues& current();

private:
    std::optional<std::string> text(const char* key) const;
    void parse();
    void parseHoldWhile(std::string_view text);
    void parseHoldCommand(const std::string& text);
    void parseRestartAfterLocked(const std::string& text);
    void parseVolume(const std::string& text);
    void complain(std::string problem) { _problems.insert(std::move(problem)); }

    const SettingsFile& _file;
    ErrorLog& _errorLog;
    std::optional<unsigned> _reading; ///< The one that was parsed.
    DesktopValues _values;
    std::set<std::string> _problems; ///< Of that reading.
};

} // namespace platform::linux
