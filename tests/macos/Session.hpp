#pragma once

// A program's run on the Mac's desktop, inside the test's own process, and the hands of a user who does things
// meanwhile. Everything goes through AppKit: buttons send their actions, menu entries are picked from the menu of
// the status item, windows are found where AppKit says they are.

#import <AppKit/AppKit.h>

#include <chrono>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace macos_tests {

using std::chrono::milliseconds;

/// Runs programs, one after the other. The settings are empty at first.
class Session {
public:
    using Program = std::function<int(int argc, const char* const* argv)>;

    Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();

    /// Makes a desktop and calls `program`, which is ended if it still runs after `limit`; gives what it returned.
    int run(const std::vector<std::string>& arguments, milliseconds limit, const Program& program);

    /// Whether the last program had to be ended.
    bool ranOut() const { return _ranOut; }

    /// Has `deed` done as soon as `isDue`, whatever the program is in the middle of.
    void when(std::function<bool()> isDue, std::function<void()> deed);

    /// Has `deed` done after that time.
    void after(milliseconds delay, std::function<void()> deed);

    /// Has `deed` done once the alert or panel that opens next is on screen.
    void onceShown(std::function<void()> deed);

    /// For the run loop's timer: does the next thing that is due.
    void tick(NSTimer* clock);

private:
    struct Deed {
        std::function<bool()> isDue;
        std::function<void()> action;
    };

    void startClock();

    std::vector<Deed> _agenda;
    std::chrono::steady_clock::time_point _end;
    bool _isRunning = false;
    bool _ranOut = false;
};

/// The window of the alert or panel in front; nil if there is none.
NSWindow* frontWindow();

/// All views of that class in the window in front, outermost first.
NSArray* viewsOfClass(Class kind);

/// The button of that title in the window in front; nil if there is none.
NSButton* buttonTitled(std::string_view title);

/// The button at `index` of the alert in front.
NSButton* alertButton(std::size_t index);

/// The check box of the alert in front.
NSButton* alertCheckBox();

/// Does what a click on a button comes down to; nil fails the test. (`performClick:` of GNUstep runs the run loop
/// in its default mode for a while, so that timers fire that must not.)
void press(NSButton* button);

/// The file names of the sounds that were started, in order.
std::vector<std::string>& playedSounds();

/// Closes the window in front as its own close button would.
void closeFrontWindow();

/// The status item's button and menu; there must be one.
NSStatusBarButton* statusButton();
NSMenu* statusMenu();

/// The entry of that title in the status item's menu, freshly validated; nil if there is none.
NSMenuItem* menuEntry(std::string_view title);

/// Picks that entry, if the user can.
void pick(std::string_view title);

/// Posts what the system posts when the machine woke up.
void wakeMachine();

} // namespace macos_tests
