#pragma once

// The simulated desktop with Marvelode Timer installed on it, and what a story may know of the program beyond what
// its user sees.

#include "app/AppState.hpp"
#include "platform/simulated/SimulatedDesktop.hpp"

#include <string>
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

class StoryDesktop : public platform::simulated::SimulatedDesktop {
public:
    /// A desktop with a complete installation and no settings. What nobody looked at fails the test.
    explicit StoryDesktop(platform::RepeatingTimersDuringModal policy = platform::RepeatingTimersDuringModal::Wait);

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
    Lines _published;
};

} // namespace story
