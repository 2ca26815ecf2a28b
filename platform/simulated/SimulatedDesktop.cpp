#include "platform/simulated/SimulatedDesktop.hpp"

#include "platform/simulated/ViewReader.hpp"

#include <algorithm>
#include <utility>

namespace platform::simulated {
namespace {

using std::chrono::nanoseconds;
using std::chrono::seconds;

// A Monday morning: 9 June 2025, 9:00 UTC.
constexpr nanoseconds firstMorning = seconds{1'749'459'600};

std::string inQuotes(std::string_view text) { return "\"" + std::string{text} + "\""; }

[[noreturn]] void missing(std::string_view kind, std::string_view name) {
    throw Unexpected{"there is no " + std::string{kind} + " " + inQuotes(name)};
}

/// The kind of view that `control` is; throws if it is another or takes no input.
template <typename Kind>
const Kind& usable(const std::optional<Control>& control, std::string_view kind, std::string_view label) {
    const Kind* found = control ? std::get_if<Kind>(&control->view->node) : nullptr;
    if (!found) {
        missing(kind, label);
    }
    if (control->isDisabled) {
        throw Unexpected{"the " + std::string{kind} + " " + inQuotes(label) + " is disabled"};
    }
    return *found;
}

template <typename Value>
std::optional<Value> found(const std::map<std::string, Value, std::less<>>& map, std::string_view key) {
    const auto position = map.find(key);
    return position == map.end() ? std::nullopt : std::optional{position->second};
}

template <typename Kind>
const Kind* fileAs(const Resources& resources, std::string_view name) {
    const auto position = resources.find(name);
    return position == resources.end() ? nullptr : std::get_if<Kind>(&position->second);
}

} // namespace

/// Puts a session on top of the others for as long as it exists.
class SimulatedDesktop::SessionOnTop {
public:
    SessionOnTop(SimulatedDesktop& desktop, Session& session)
        : _desktop{desktop} {
        _desktop._sessions.push_back(&session);
        ++_desktop._windowsOpened;
    }
    ~SessionOnTop() { _desktop._sessions.pop_back(); }
    SessionOnTop(const SessionOnTop&) = delete;
    SessionOnTop& operator=(const SessionOnTop&) = delete;

private:
    SimulatedDesktop& _desktop;
};

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
    for (const std::string& noise : _heard) {
        _report("a noise was made that nobody heard: " + noise);
    }
    for (const std::string& line : _printed) {
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

void SimulatedDesktop::letProgramRun() {
    _horizon = std::max(_horizon, _uptime);
    if (!isRunning()) {
        _uptime = _horizon;
        return;
    }
    try {
        _program->resume();
    } catch (...) {
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

/// Does what comes next: what the user does, what is due, else going on to the next timer before the horizon, else
/// letting the story go on.
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

// The status item

const NSStatusItem& SimulatedDesktop::statusItem() const {
    if (!_statusItem) {
        throw Unexpected{"there is no status item"};
    }
    return *_statusItem;
}

std::string SimulatedDesktop::title() const { return statusItem().button()->attributedTitle().string; }

std::optional<NSColor> SimulatedDesktop::titleColor() const {
    return statusItem().button()->attributedTitle().foregroundColor;
}

std::string SimulatedDesktop::icon() const {
    const auto& image = statusItem().button()->image();
    return image ? image->name : "";
}

SimulatedDesktop::Lines SimulatedDesktop::menu() const {
    if (!statusItem().menu()) {
        throw Unexpected{"the status item has no menu"};
    }
    Lines lines;
    for (const auto& item : statusItem().menu()->items()) {
        if (item->isSeparatorItem()) {
            lines.emplace_back("---");
            continue;
        }
        const std::string enabled = statusItem().menu()->validates(*item) ? "" : "- ";
        const std::string mark = item->state() == NSMenuItem::StateValue::On ? "x " : "";
        const std::string key = item->keyEquivalent.empty() ? "" : " (" + item->keyEquivalent + ")";
        lines.push_back(enabled + mark + item->title + key);
    }
    return lines;
}

const std::shared_ptr<NSMenuItem>& SimulatedDesktop::entry(std::string_view title) const {
    if (statusItem().menu()) {
        for (const auto& item : statusItem().menu()->items()) {
            if (!item->isSeparatorItem() && item->title == title) {
                return item;
            }
        }
    }
    missing("menu entry", title);
}

bool SimulatedDesktop::isEnabled(std::string_view title) const {
    return statusItem().menu()->validates(*entry(title));
}

bool SimulatedDesktop::isChecked(std::string_view title) const {
    return entry(title)->state() == NSMenuItem::StateValue::On;
}

void SimulatedDesktop::pick(std::string_view title) { pick(entry(title)); }

void SimulatedDesktop::pickByKey(std::string_view key) {
    for (const auto& item : statusItem().menu()->items()) {
        if (!key.empty() && item->keyEquivalent == key) {
            pick(item);
            return;
        }
    }
    missing("menu entry with the key", key);
}

void SimulatedDesktop::pick(const std::shared_ptr<NSMenuItem>& item) {
    const std::shared_ptr<NSMenu> menu = statusItem().menu();
    if (!menu->validates(*item)) {
        throw Unexpected{"the menu entry " + inQuotes(item->title) + " cannot be picked now"};
    }
    perform([menu, item] { menu->performActionForItem(*item); });
}

// The window in front

int SimulatedDesktop::runAlert(NSAlert& alert) {
    Session session;
    session.alert = &alert;
    _unseenAlerts.push_back(inQuotes(alert.messageText) + " " + inQuotes(alert.informativeText));
    const SessionOnTop onTop{*this, session};
    while (!session.answer && !_isTerminating) {
        turn(RunLoopMode::Modal);
    }
    return session.answer.value_or(NSAlert::Stopped);
}

void SimulatedDesktop::runModal(NSPanel& panel, const View& content) {
    Session session;
    session.panel = &panel;
    session.content = &content;
    const SessionOnTop onTop{*this, session};
    while (!session.answer && !_isTerminating) {
        turn(RunLoopMode::Modal);
    }
}

void SimulatedDesktop::stopModal() {
    const auto innermost =
        std::find_if(_sessions.rbegin(), _sessions.rend(), [](const Session* session) { return session->panel; });
    if (innermost != _sessions.rend()) {
        (*innermost)->answer = NSAlert::Stopped;
    }
}

void SimulatedDesktop::close(NSPanel& panel) {
    if (panel.delegate) {
        panel.delegate->windowWillClose();
    }
}

bool SimulatedDesktop::alertIsUp() {
    _unseenAlerts.clear();
    return front() && front()->alert;
}

const NSAlert& SimulatedDesktop::alert() {
    if (!alertIsUp()) {
        throw Unexpected{"there is no alert in front"};
    }
    return *front()->alert;
}

bool SimulatedDesktop::panelIsUp() const { return front() && front()->panel; }

SimulatedDesktop::Session& SimulatedDesktop::frontPanel() const {
    if (!panelIsUp()) {
        throw Unexpected{"there is no panel in front"};
    }
    return *_sessions.back();
}

const NSPanel& SimulatedDesktop::panel() const { return *frontPanel().panel; }

const View& SimulatedDesktop::panelContent() const { return *frontPanel().content; }

SimulatedDesktop::Lines SimulatedDesktop::panelLines() const {
    const Session& session = frontPanel();
    const bool isHidden = !session.panel->contentView || session.panel->contentView->isHidden;
    return isHidden ? Lines{} : linesOf(*session.content, session.typed);
}

bool SimulatedDesktop::panelIsCentred() const { return _centred.contains(&panel()); }

void SimulatedDesktop::dragPanelAway() { _centred.erase(&panel()); }

/// Uses a control of the panel; what was typed into its field is read first.
void SimulatedDesktop::use(Session& session, std::function<void()> control) {
    const auto field = firstField(*session.content);
    perform([field, typed = std::exchange(session.typed, std::nullopt), control = std::move(control)] {
        if (typed) {
            std::get<node::TextField>(field->view->node).commit(*typed);
        }
        control();
    });
}

void SimulatedDesktop::click(std::string_view button) {
    if (!alertIsUp()) {
        Session& session = frontPanel();
        use(session, usable<node::Button>(buttonLabelled(button, *session.content), "button", button).action);
        return;
    }
    Session& session = *_sessions.back();
    const Lines buttons = session.alert->buttons();
    const auto position = std::find(buttons.begin(), buttons.end(), button);
    if (position == buttons.end()) {
        missing("button", button);
    }
    session.answer = NSAlert::FirstButtonReturn + static_cast<int>(position - buttons.begin());
    letProgramRun();
}

void SimulatedDesktop::tick(std::string_view label) { setCheckBox(label, true); }

void SimulatedDesktop::untick(std::string_view label) { setCheckBox(label, false); }

void SimulatedDesktop::setCheckBox(std::string_view label, bool isTicked) {
    const auto requireChange = [&](bool isTickedNow) {
        if (isTickedNow == isTicked) {
            throw Unexpected{inQuotes(label) + (isTicked ? " is ticked already" : " is not ticked")};
        }
    };
    if (alertIsUp()) {
        NSSuppressionButton* const checkBox = _sessions.back()->alert->suppressionButton();
        if (!checkBox || checkBox->title != label) {
            missing("check box", label);
        }
        requireChange(checkBox->state == NSSuppressionButton::StateValue::On);
        checkBox->state = isTicked ? NSSuppressionButton::StateValue::On : NSSuppressionButton::StateValue::Off;
        return;
    }
    Session& session = frontPanel();
    const auto& toggle = usable<node::Toggle>(controlBeside(label, *session.content), "toggle", label);
    requireChange(toggle.isOn.get());
    use(session, [&toggle, isTicked] { toggle.isOn.set(isTicked); });
}

void SimulatedDesktop::choose(std::string_view label, std::string_view item) {
    Session& session = frontPanel();
    const auto& picker = usable<node::Picker>(controlBeside(label, *session.content), "picker", label);
    const auto position = std::find(picker.items.begin(), picker.items.end(), item);
    if (position == picker.items.end()) {
        missing("item", item);
    }
    const auto index = static_cast<std::size_t>(position - picker.items.begin());
    use(session, [&picker, index] { picker.select(index); });
}

void SimulatedDesktop::type(std::string text) {
    Session& session = frontPanel();
    usable<node::TextField>(firstField(*session.content), "field", "");
    session.typed = std::move(text);
}

void SimulatedDesktop::pressReturn() {
    if (alertIsUp()) {
        click(front()->alert->buttons().front());
        return;
    }
    Session& session = frontPanel();
    if (const auto typed = std::exchange(session.typed, std::nullopt)) {
        const auto& field = usable<node::TextField>(firstField(*session.content), "field", "");
        perform([&field, text = *typed] { field.submit(text); });
    } else {
        use(session, usable<node::Button>(defaultButton(*session.content), "button", "default").action);
    }
}

void SimulatedDesktop::closeWindow() {
    NSPanel* const window = frontPanel().panel;
    perform([window] { window->close(); });
}

// Settings

DefaultsValue SimulatedDesktop::valueForKey(std::string_view key, DefaultsValue absent) const {
    if (const auto argument = found(_arguments, key)) {
        return *argument;
    }
    return found(defaults, key).value_or(std::move(absent));
}

bool SimulatedDesktop::boolForKey(std::string_view key) { return boolFromDefaults(valueForKey(key, false)); }

std::int64_t SimulatedDesktop::integerForKey(std::string_view key) {
    return integerFromDefaults(valueForKey(key, std::int64_t{0}));
}

std::optional<std::string> SimulatedDesktop::stringForKey(std::string_view key) {
    const bool isKnown = _arguments.contains(key) || defaults.contains(key);
    return isKnown ? std::optional{stringFromDefaults(valueForKey(key, false))} : std::nullopt;
}

void SimulatedDesktop::setDefault(DefaultsValue value, std::string_view key) {
    const auto position = defaults.find(key);
    if (position == defaults.end()) {
        defaults.emplace(key, std::move(value));
    } else {
        position->second = std::move(value);
    }
}

// Resources: a file's address is its name

std::optional<std::filesystem::path> SimulatedDesktop::resource(std::string_view name, std::string_view extension) {
    std::string file = std::string{name} + "." + std::string{extension};
    _lookedUp.insert(file);
    return resources.contains(file) ? std::optional<std::filesystem::path>{std::move(file)} : std::nullopt;
}

std::optional<std::string> SimulatedDesktop::contentsOf(const std::filesystem::path& url) {
    const auto* file = fileAs<TextFile>(resources, url.native());
    return file ? std::optional{file->bytes} : std::nullopt;
}

std::optional<NSImage> SimulatedDesktop::imageNamed(std::string_view name) {
    const auto* file = fileAs<PictureFile>(resources, name);
    return file ? std::optional{NSImage{std::string{name}, name, file->size}} : std::nullopt;
}

// Sounds

bool SimulatedDesktop::canPlay(const std::filesystem::path& url) {
    return fileAs<SoundFile>(resources, url.native());
}

bool SimulatedDesktop::play(const NSSound& sound) {
    const auto* file = fileAs<SoundFile>(resources, sound.url.native());
    TimerQueue::Instant& until = _playingUntil[&sound];
    if (!file || until > _uptime) {
        return false;
    }
    until = _uptime + file->length;
    _heard.push_back(sound.url.stem());
    return true;
}

// Messages

void SimulatedDesktop::log(const Logger& logger, Logger::Level /*level*/, std::string_view message) {
    _logged.push_back({logger.subsystem, logger.category, std::string{message}});
}

SimulatedDesktop::Lines SimulatedDesktop::heard() { return std::exchange(_heard, {}); }

SimulatedDesktop::Lines SimulatedDesktop::printed() { return std::exchange(_printed, {}); }

std::vector<LogEntry> SimulatedDesktop::logged() { return std::exchange(_logged, {}); }

} // namespace platform::simulated
