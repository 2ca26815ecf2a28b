#pragma once

// The user in front of the windows, with little patience: snoozes the first reminder, restarts at the next, and so
// on in turn, and closes every modal panel. Plays the part that `ScriptedWindow` hands to a test.

#include "platform/linux/window/Protocol.hpp"

#include <glib.h>

#include <filesystem>
#include <map>
#include <set>

namespace faults {

class User {
public:
    /// Waits at the socket `path` for the programs that show windows.
    explicit User(const std::filesystem::path& path);
    ~User();
    User(const User&) = delete;
    User& operator=(const User&) = delete;

    int reminders = 0; ///< That came so far.
    int panels = 0;    ///< Modal ones, the same.

    /// Whether a window is still up that was answered.
    bool isWaiting() const { return !_answered.empty(); }

    /// Which button answers the next reminder, from 0.
    std::uint32_t nextButton = 1;

private:
    static gboolean knocked(gint door, GIOCondition, gpointer self);
    static gboolean told(gint line, GIOCondition, gpointer self);

    void hear(int line, std::string_view message);
    void hangUp(int line);

    int _door;
    unsigned _doorSource;
    std::map<int, unsigned> _lines; // to each window program that runs, with what watches over it
    std::set<int> _answered;        // of those
};

} // namespace faults
