#include "platform/simulated/SimulatedDesktop.hpp"

#include <algorithm>
#include <utility>

namespace platform::simulated {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

// A Monday morning: 9 June 2025, 9:00 UTC.
constexpr nanoseconds firstMorning = seconds{1'749'459'600};

} // namespace

SimulatedDesktop::SimulatedDesktop(Program program, Report report, RepeatingTimersDuringModal policy)
    : _install{std::move(program)}
    , _report{std::move(report)}
    , _policy{policy}
    , _timers{policy}
    , _boot{firstMorning} {}

SimulatedDesktop::~SimulatedDesktop() {
    losePower();
    for (const std::string& alert : _unseenAlerts) {
        _report("an alert came up that nobody looked at: " + alert);
    }
    for (const std::string& noise : heard()) {
        _report("a noise was made that nobody heard: " + noise);
    }
    for (const std::string& line : printed()) {
        _report("a line was printed that nobody read: " + line);
    }
    for (const LogEntry& entry : _logged) {
        _report("an entry was logged that nobody read: " + entry.message);
    }
}

// The life of the program

void SimulatedDesktop::launch(const Lines& arguments) {
    if (isRunning()) {
        throw Unexpected{"the program is running already"};
    }
    _arguments = argumentDomain(arguments);
    _exitStatus.reset();
    _program = std::make_unique<Coroutine>([this, arguments] {
        std::vector<const char*> words{"marvelode-timer"};
        for (const std::string& argument : arguments) {
            words.push_back(argument.c_str());
        }
        _exitStatus = _install(static_cast<int>(words.size()), words.data());
    });
    letProgramRun();
}

void SimulatedDesktop::losePower() {
    _program = nullptr;
    forgetProgram();
}

void SimulatedDesktop::perform(std::function<void()> deed) {
    if (!isRunning()) {
        throw Unexpected{"the program is not running"};
    }
    _event = std::move(deed);
    letProgramRun();
}

/// Resumes the program until it waits for the story again.
void SimulatedDesktop::letProgramRun() {
    if (_isProgramsTurn) {
        throw Unexpected{"the story goes on while the program runs"};
    }
    _horizon = std::max(_horizon, _uptime);
    if (!isRunning()) {
        _uptime = _horizon;
        return;
    }
    try {
        _isProgramsTurn = true;
        _program->resume();
        _isProgramsTurn = false;
    } catch (...) {
        _isProgramsTurn = false;
        losePower();
        throw;
    }
    if (_program->hasEnded()) {
        losePower();
        _uptime = _horizon;
    }
}

void SimulatedDesktop::forgetProgram() {
    application.delegate = nullptr;
    workspaceNotifications = {};
    _event = nullptr;
    _timers = TimerQueue{_policy};
    _isTerminating = false;
    _statusItem = nullptr;
    _centred.clear();
    _playingUntil.clear();
    _isInFront = false;
}

// The run loop

int SimulatedDesktop::run(int /*argc*/, const char* const* /*argv*/) {
    if (application.delegate) {
        application.delegate->applicationDidFinishLaunching();
    }
    while (!_isTerminating) {
        turn(RunLoopMode::Default);
    }
    return 0;
}

/// Does what comes next: what the user does, or what is due; otherwise goes on to the next timer before the
/// horizon, or returns to the story.
void SimulatedDesktop::turn(RunLoopMode mode) {
    if (const auto event = std::exchange(_event, nullptr)) {
        event();
        return;
    }
    if (_timers.fireDue(_uptime, mode)) {
        return;
    }
    const auto next = _timers.nextDue(mode);
    if (next && *next <= _horizon) {
        _uptime = std::max(_uptime, *next);
        return;
    }
    _uptime = std::max(_uptime, _horizon);
    _program->yield();
}

// Time

void SimulatedDesktop::wait(nanoseconds span) {
    _horizon = _uptime + span;
    letProgramRun();
}

void SimulatedDesktop::sleepAndWake(nanoseconds span) {
    setClockForth(span);
    perform([this] { workspaceNotifications.post(NotificationCenter::Name::NSWorkspaceDidWakeNotification); });
}

void SimulatedDesktop::setClockForth(nanoseconds span) { _boot += span; }

Date SimulatedDesktop::now() {
    const nanoseconds wall = _boot + _uptime;
    const auto whole = std::chrono::floor<seconds>(wall);
    return Date{static_cast<double>(whole.count()) + static_cast<double>((wall - whole).count()) / 1e9};
}

} // namespace platform::simulated
