#pragma once

// A desktop without a screen: time moves only when the story says so, and the user does what the story tells. The
// program runs for real, on a stack of its own, and always has nothing left to do when the story goes on.
//
// A story may rely on what it sees: a verb for something that is not there throws `Unexpected`, and what happened
// without any story looking (an alert, a noise, a line printed or logged) is reported when the desktop is
// destroyed.

#include "platform/Desktop.hpp"
#include "platform/TimerQueue.hpp"
#include "platform/simulated/Coroutine.hpp"
#include "platform/simulated/Journal.hpp"
#include "platform/simulated/Resources.hpp"
#include "platform/simulated/Unexpected.hpp"

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform::simulated {

/// An entry of the desktop's log.
struct LogEntry {
    std::string subsystem;
    std::string category;
    std::string message;
    bool operator==(const LogEntry&) const = default;
};

class SimulatedDesktop : public platform::Desktop {
public:
    using Program = std::function<int(int argc, const char* const* argv)>;
    using Report = std::function<void(const std::string& complaint)>;
    using Lines = std::vector<std::string>;

    /// A desktop on which `program` is installed. The destructor tells `report` what no story looked at.
    SimulatedDesktop(Program program, Report report,
                     RepeatingTimersDuringModal policy = RepeatingTimersDuringModal::Wait);

    /// Ends the program if it still runs, as `losePower()` does.
    ~SimulatedDesktop() override;

    // What outlives the program

    Resources resources;                                        ///< The files of its bundle, to be changed at will.
    std::map<std::string, DefaultsValue, std::less<>> defaults; ///< Its settings as stored.
    bool logsErrors = true;                                     ///< Whether the log takes entries at error level.

    // The life of the program

    /// Starts the program with these arguments; returns when it has nothing left to do.
    void launch(const Lines& arguments = {});
    bool isRunning() const { return _program != nullptr; }

    /// The status of the last run; nothing if it lost power.
    std::optional<int> exitStatus() const { return _exitStatus; }

    /// Ends the program where it stands: nothing more of it runs, and nothing more is stored.
    void losePower();

    /// Runs `deed` in the program, as if an event had called it. The program must be running.
    void perform(std::function<void()> deed);

    // Time

    /// Passes that much time.
    void wait(std::chrono::nanoseconds span);

    /// Passes that much time in which the program does not run, or is busy if the program calls this: what falls
    /// due meanwhile is late.
    void stall(std::chrono::nanoseconds span) { _uptime += span; }

    /// How long the machine has been awake.
    TimerQueue::Instant uptime() const { return _uptime; }

    /// Puts the machine to sleep for that long: the wall clock goes on, timers do not. Then posts that it woke up.
    void sleepAndWake(std::chrono::nanoseconds span = {});

    /// Sets the wall clock forth, or back if `span` is negative; no timer is touched.
    void setClockForth(std::chrono::nanoseconds span);

    Date now() override;

    // The status item

    bool hasStatusItem() const { return _statusItem != nullptr; }
    const NSStatusItem& statusItem() const;
    std::string title() const;
    std::optional<NSColor> titleColor() const;
    std::string icon() const; ///< The picture's name; empty if there is none.

    /// The menu from top to bottom: "- " before an entry that cannot be picked, "x " before one with a check mark,
    /// " (k)" behind one with a key; "---" is a separator.
    Lines menu() const;
    bool isEnabled(std::string_view title) const;
    bool isChecked(std::string_view title) const;

    /// Picks an entry of the menu.
    void pick(std::string_view title);

    /// Presses the menu's modifier and `key` while the menu is open.
    void pickByKey(std::string_view key);

    // The window in front

    /// How many alerts and panels have come up so far.
    std::size_t windowsOpened() const { return _windowsOpened; }

    bool alertIsUp();
    const NSAlert& alert();

    bool panelIsUp() const;
    const NSPanel& panel() const;
    const View& panelContent() const;
    Lines panelLines() const; ///< What the panel shows; see `linesOf`.
    bool panelIsCentred() const;
    void dragPanelAway();

    /// Presses the alert's or the panel's button.
    void click(std::string_view button);

    /// Ticks a check box that is not ticked, or a toggle that is off.
    void tick(std::string_view label);
    void untick(std::string_view label);

    /// Picks `item` in the picker beside `label`.
    void choose(std::string_view label, std::string_view item);

    /// Replaces what stands in the panel's field; it is read when the user goes on to something else.
    void type(std::string text);

    /// Presses Return: in the field if the user is typing there, else on the default button.
    void pressReturn();

    /// Takes the alert away without an answer, as happens when the program that shows it dies.
    void makeAlertVanish();

    /// Closes the panel as the window manager can.
    void closeWindow();

    /// Whether the program is in front of all others; `switchAway()` ends that.
    bool isInFront() const { return _isInFront; }
    void switchAway() { _isInFront = false; }

    // What happened since these were asked last

    Lines heard();   ///< Sounds by the name of their file, and "beep".
    Lines printed(); ///< Lines on standard output.
    std::vector<LogEntry> logged();

    /// All that happened, in its order: "stored Mute 1", "published Mute true", "heard beep", "shown alert ...",
    /// "closed alert ...", "printed ...", "logged ...". What is read here counts as seen, heard and read.
    Lines journal();

    /// The names of all files that the program asked for by name and extension, in this and earlier runs.
    const std::set<std::string>& lookedUp() const { return _lookedUp; }

protected:
    int run(int argc, const char* const* argv) override;
    int runAlert(NSAlert& alert) override;
    bool play(const NSSound& sound) override;
    void beep() override { note(Journal::Kind::Heard, "beep"); }

    /// Lets the next thing happen: an event, or what falls due; otherwise the story goes on.
    void turn(RunLoopMode mode);

    void note(Journal::Kind kind, std::string text) { _journal.add(kind, std::move(text)); }

    /// The entries of that kind that are new.
    Lines news(Journal::Kind kind) { return _journal.news(kind); }

private:
    /// An alert or a panel that is being run.
    struct Session {
        NSAlert* alert = nullptr;
        NSPanel* panel = nullptr;
        const View* content = nullptr;
        std::optional<std::string> typed;
        std::optional<int> answer; // set when the session is over
    };
    class SessionOnTop;

    void terminate() override { _isTerminating = true; }
    void activate(bool ignoringOtherApps) override { _isInFront = _isInFront || ignoringOtherApps; }
    void schedule(const std::shared_ptr<Timer>& timer) override { _timers.add(timer, _uptime); }
    void cancel(const Timer& timer) override { _timers.remove(timer); }
    void showStatusItem(const std::shared_ptr<NSStatusItem>& item) override { _statusItem = item; }
    void statusItemChanged() override {}
    void runModal(NSPanel& panel, const View& content) override;
    void stopModal() override;
    void center(NSPanel& panel) override { _centred.insert(&panel); }
    void close(NSPanel& panel) override;
    bool boolForKey(std::string_view key) override;
    std::int64_t integerForKey(std::string_view key) override;
    std::optional<std::string> stringForKey(std::string_view key) override;
    void setDefault(DefaultsValue value, std::string_view key) override;
    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) override;
    std::optional<std::string> contentsOf(const std::filesystem::path& url) override;
    std::optional<NSImage> imageNamed(std::string_view name) override;
    bool canPlay(const std::filesystem::path& url) override;
    void print(std::string_view line) override { note(Journal::Kind::Printed, std::string{line}); }
    bool isLogEnabled(const Logger&, Logger::Level) override { return logsErrors; }
    void log(const Logger& logger, Logger::Level level, std::string_view message) override;

    void letProgramRun();
    void forgetProgram();
    const Session* front() const { return _sessions.empty() ? nullptr : _sessions.back(); }
    Session& frontPanel() const;
    const std::shared_ptr<NSMenuItem>& entry(std::string_view title) const;
    void pick(const std::shared_ptr<NSMenuItem>& item);
    void use(Session& session, std::function<void()> control);
    void setCheckBox(std::string_view label, bool isTicked);
    DefaultsValue valueForKey(std::string_view key, DefaultsValue absent) const;

    Program _install;
    Report _report;
    std::unique_ptr<Coroutine> _program;
    bool _isProgramsTurn = false; // whether the program runs, and not the story
    std::optional<int> _exitStatus;
    std::map<std::string, std::string, std::less<>> _arguments;
    bool _isTerminating = false;

    RepeatingTimersDuringModal _policy;
    TimerQueue _timers;
    TimerQueue::Instant _uptime{};
    TimerQueue::Instant _horizon{}; // the story goes on when time has come this far
    std::chrono::nanoseconds _boot; // the wall clock's reading when the uptime was zero
    std::function<void()> _event;   // what the user or the system does next

    std::shared_ptr<NSStatusItem> _statusItem;
    std::vector<Session*> _sessions; // innermost last
    std::size_t _windowsOpened = 0;
    std::set<const NSPanel*> _centred;
    bool _isInFront = false;

    std::map<const NSSound*, TimerQueue::Instant> _playingUntil;
    Journal _journal;
    Lines _unseenAlerts;
    std::vector<LogEntry> _logged;
    std::set<std::string> _lookedUp;
};

} // namespace platform::simulated
