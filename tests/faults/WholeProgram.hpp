#pragma once

// The program as it is shipped, in a home and on buses of its own, with stand-ins for panel, windows and sounds.
// Its clocks stand at the true time until a test sets them ahead.

#include "tests/faults/FaultPlan.hpp"
#include "tests/faults/User.hpp"
#include "tests/support/PrivateBuses.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/TrayWatcher.hpp"

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace faults {

/// Thrown instead of waiting any longer.
struct Stuck : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Thrown instead of waiting for something from a program that has ended.
struct Over : std::exception {};

class WholeProgram {
public:
    WholeProgram();
    ~WholeProgram();
    WholeProgram(const WholeProgram&) = delete;
    WholeProgram& operator=(const WholeProgram&) = delete;

    /// Writes the settings file anew, and removes what else is in its folder.
    void store(std::string_view settings) const;
    std::string stored() const;

    /// The names of all files in the settings' folder, each followed by a blank.
    std::string storedFiles() const;

    /// Puts a shell script in the place of one of its helper programs.
    void install(const char* helper, const std::string& commands) const;

    /// Starts it with that command line, or else in test mode, with intervals of 30 seconds and snoozes of 5. What
    /// `plan` counts begins anew.
    void start(std::vector<std::string> arguments = {"-test"});
    /// Ends it without ado if it runs.
    void kill();

    bool isRunning() const { return _process != 0; }
    GPid process() const { return _process; }
    /// As `waitpid` tells of the end.
    int status() const { return _status; }
    /// What it has written, errors included.
    std::string output() const;
    /// Of memory that it shares with no other program, in KiB.
    int memory() const;

    /// Runs the main loop until that holds.
    void await(const std::function<bool()>& holds, const std::string& what);

    /// A property as text, empty if there is no answer.
    std::string get(const char* property);
    /// Whether a method was answered by success.
    bool succeeds(const char* method, GVariant* arguments = nullptr);

    /// The folder that is its home.
    const std::filesystem::path& home() const { return _folder.path; }

    /// Sets its clocks ahead, and has it notice.
    void passTime(std::int64_t seconds);
    /// Passes as much time as it takes until the user is reminded.
    void awaitReminder();
    /// Lets the user restart at a reminder.
    void awaitRestart();
    /// Quits it.
    void quit();

    FaultPlan& plan() { return *_plan; }

    User& user() { return _user; }

    platform::linux::TrayWatcher& panel() { return _panel; }

private:
    std::filesystem::path configuration() const { return _folder.path / "config/marvelode-timer"; }

    TemporaryFolder _folder;
    User _user{_folder.path / "user"};
    platform::linux::ObjectHandle<GDBusConnection> _bus = connectToSession();
    platform::linux::TrayWatcher _panel;
    FaultPlan* _plan;
    GPid _process = 0;
    unsigned _end = 0;
    int _status = 0;
};

} // namespace faults
