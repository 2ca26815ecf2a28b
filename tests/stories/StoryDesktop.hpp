#pragma once

// The simulated desktop with Marvelode Timer installed on it, and what a story may know of the program beyond what
// its user sees.

#include "app/AppState.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"

#include <string>
#include <utility>
#include <vector>

namespace story {

using namespace std::chrono_literals;
using marvelode::AppState;
using platform::NSColor;
using platform::simulated::PictureFile;
using platform::simulated::SoundFile;
using platform::simulated::TextFile;
using platform::simulated::Unexpected;
using platform::simulated::UnreadableFile;
using Lines = platform::simulated::SimulatedDesktop::Lines;

/// Marvelode Timer as a program of which many can run in one process, one after the other: nothing of it is left
/// when it has ended.
int oneOfManyPrograms(int argc, const char* const* argv);

class StoryDesktop : public platform::simulated::SimulatedDesktop {
public:
    /// A desktop with a complete installation and no settings. What no test looked at fails it.
    explicit StoryDesktop(platform::RepeatingTimersDuringModal policy = platform::RepeatingTimersDuringModal::Wait);

    /// All files of the program's bundle.
    static platform::simulated::Resources completeInstallation();

    /// Leaves the settings as a first run of version 1.1.0 leaves them.
    void hadAFirstRun();

    /// Starts the program as a user who has run it before, and waits until the first break is due.
    void workUntilTheBreak();

    // Of the running program

    AppState state() const;

    /// Seconds since 1970.
    double deadline() const;

    /// Whether the break cycle has a timer pending.
    bool isTimerPending() const;

    /// What was published since this was asked last, such as "Init to Timing", "Mute true" or "Restart".
    Lines published();

protected:
    int run(int argc, const char* const* argv) override;

private:
    void publish(std::string what) { note(platform::simulated::Journal::Kind::Published, std::move(what)); }
};

} // namespace story
