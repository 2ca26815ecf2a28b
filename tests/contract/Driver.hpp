#pragma once

// What the contract needs to know about a desktop: how a program is run on it, and how a user's hands move there.
// Each desktop brings one driver and links it with the clauses, which are the same for all.
//
// A clause is a piece of program. What the user does is arranged ahead, as deeds that are done while the program
// sits in its run loop, in an alert or in a panel. Real desktops need real time, so clauses are content with
// fractions of a second and tolerate that things come a little late, but never early.

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace contract {

using std::chrono::milliseconds;

/// A resource file, as `Bundle::url` is asked for it.
struct ResourceName {
    std::string name;
    std::string extension;
};

class Driver {
public:
    virtual ~Driver() = default;

    // Before the program runs

    /// Adds a file with that name (extension included) and content to the program's own resources.
    virtual void install(std::string_view fileName, std::string_view bytes) = 0;

    /// A sound among the resources that this desktop can play.
    virtual ResourceName playableSound() = 0;

    /// Makes a new desktop and runs `program` on it once launching has finished; gives the status with which
    /// `NSApplicationMain` returns. A program that has not ended by itself after five seconds is ended, and that is
    /// a failure. The settings are empty at a driver's first run and are kept from one run to the next.
    virtual int run(const std::vector<std::string>& arguments, std::function<void()> program) = 0;

    // While the program runs: called by the program or by a deed. Deeds never run at the same time as the program,
    // and may call the platform as the program does.

    /// Has `deed` done after that time, whatever the program is in the middle of.
    virtual void after(milliseconds delay, std::function<void()> deed) = 0;

    /// Has `deed` done as soon as the alert or panel that is opened next is on screen and takes input.
    virtual void onceShown(std::function<void()> deed) = 0;

    /// Keeps the program busy for that long, so that nothing can fire. For the program, not for deeds.
    virtual void stall(milliseconds span) = 0;

    /// Time gone by since some origin on the clock that timers run on.
    virtual milliseconds uptime() = 0;

    // What the user and the machine do: for deeds. They may return before the program has reacted.

    /// Presses the button at `index` of the alert in front.
    virtual void pressAlertButton(std::size_t index) = 0;

    /// Ticks the check box of the alert in front.
    virtual void tickAlertCheckBox() = 0;

    /// Presses the button of that label in the panel in front.
    virtual void pressPanelButton(std::string_view label) = 0;

    /// Closes the panel in front as the window manager or the window's own close button would.
    virtual void closePanel() = 0;

    /// Whether the status item's menu lets the user pick the entry of that title.
    virtual bool canPickMenuEntry(std::string_view title) = 0;

    /// Tries to pick the entry of that title; one that cannot be picked stays as it is.
    virtual void pickMenuEntry(std::string_view title) = 0;

    /// Tells as the system does that the machine woke from sleep.
    virtual void wakeMachine() = 0;
};

/// The driver of the desktop that is linked in, made anew for every clause.
std::unique_ptr<Driver> makeDriver();

} // namespace contract
