#include "platform/linux/window/WindowHelper.hpp"

#include "platform/NSImage.hpp"
#include "platform/linux/window/WindowProcess.hpp"

#include <algorithm>
#include <deque>
#include <utility>

namespace platform::linux {
namespace {

/// More changes than that cannot be made in a window before one above it takes all input.
constexpr std::size_t mostKept = 100;

/// Ticks the alert's check box as the user did. Returns false if the event tells nothing of the kind.
bool tick(NSAlert& alert, const Event& event) {
    const bool* isTicked = event.value ? std::get_if<bool>(&*event.value) : nullptr;
    NSSuppressionButton* checkBox = alert.suppressionButton();
    if (!isTicked || !checkBox || event.control != alert.buttons().size()) {
        return false;
    }
    using enum NSSuppressionButton::StateValue;
    checkBox->state = *isTicked ? On : Off;
    return true;
}

/// Does to a control what the user did to it in the window. Returns false if that makes no sense.
class Deed {
public:
    explicit Deed(const Event& event)
        : _event{event} {}

    bool operator()(const node::Text&) const { return false; }
    bool operator()(const node::Image&) const { return false; }
    bool operator()(const node::Stack&) const { return false; }
    bool operator()(const node::TextField& field) const {
        const auto* number = changedTo<std::int64_t>();
        if (number) {
            field.value.set(*number);
        } else if (_event.kind == Event::Kind::Submitted && field.onSubmit) {
            field.onSubmit();
        }
        return number || _event.kind == Event::Kind::Submitted;
    }
    bool operator()(const node::Toggle& toggle) const {
        const auto* isOn = changedTo<bool>();
        return isOn && (toggle.isOn.set(*isOn), true);
    }
    bool operator()(const node::Picker& picker) const {
        const auto* index = changedTo<std::int64_t>();
        const bool isItem = index && *index >= 0 && static_cast<std::size_t>(*index) < picker.items.size();
        return isItem && (picker.select(static_cast<std::size_t>(*index)), true);
    }
    bool operator()(const node::Button& button) const {
        return _event.kind == Event::Kind::Pressed && (button.action(), true);
    }

private:
    template <typename Value>
    const Value* changedTo() const {
        return _event.value ? std::get_if<Value>(&*_event.value) : nullptr;
    }

    Event _event;
};

bool apply(const Event& event, const View& content) {
    const auto controls = controlsIn(content);
    return event.control < controls.size() && std::visit(Deed{event}, *controls[event.control]);
}

} // namespace

/// One window on screen, from its request to its end.
class WindowHelper::Session {
public:
    Session(WindowHelper& helper, bool isPanel)
        : window{++helper._lastWindow}
        , isPanel{isPanel}
        , _helper{helper} {
        if (_helper._sessions.empty()) {
            // an alert comes unasked: a token that is there was handed out for another window
            _helper._process = std::make_unique<WindowProcess>(
                _helper._program, _helper._errorLog, [&helper] { helper.tellIfShown(); },
                isPanel ? _helper._activationToken.take() : std::string{});
        }
        _helper._sessions.push_back(this);
    }
    ~Session() {
        _helper._sessions.pop_back();
        if (_helper._sessions.empty()) {
            _helper._awaiting = nullptr;
            _helper._process.reset();
        } else {
            send(CloseRequest{window});
        }
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void send(const Request& request) { _helper._process->send(request); }

    /// Waits until the user did something with this window; nothing once the session is over or the program dead.
    std::optional<Event> nextEvent() {
        while (!isOver) {
            if (!_kept.empty()) {
                const Event event = _kept.front();
                _kept.pop_front();
                return event;
            }
            if (const auto event = _helper._process->nextEvent()) {
                if (event->window == window) {
                    return event;
                }
                keepBelow(*event);
            } else if (_helper._process->isAlive()) {
                _helper._iterate();
            } else {
                break;
            }
        }
        return std::nullopt;
    }

    void giveUp() { _helper._process->giveUp("the window program told of something that cannot be done"); }

    const std::uint32_t window;
    const bool isPanel;
    bool isOver = false;

private:
    /// Windows below take no input, but the last change made in one may come as this window opens. It is kept until
    /// its own window has its turn. A press then is dropped: it was meant for what the window below had shown.
    void keepBelow(const Event& event) {
        for (Session* session : _helper._sessions) {
            if (session->window == event.window && event.kind == Event::Kind::Changed) {
                session->_kept.push_back(event);
                if (session->_kept.size() > mostKept) {
                    giveUp();
                }
            }
        }
    }

    WindowHelper& _helper;
    std::deque<Event> _kept;
};

WindowHelper::WindowHelper(const HelperProgram& program, std::function<void()> iterate, ErrorLog& errorLog,
                           ActivationToken& activationToken)
    : _program{program}
    , _iterate{std::move(iterate)}
    , _errorLog{errorLog}
    , _activationToken{activationToken} {}

WindowHelper::~WindowHelper() = default;

int WindowHelper::runAlert(NSAlert& alert) {
    SessionEnvironment& session = _program.session();
    const unsigned display = session.display();
    std::optional<int> answer = show(alert);
    if (!answer && session.display() != display) {
        answer = show(alert);
    }
    if (!answer) {
        session.reminderWasMissed(); // of the windows that the cycle waits for, and no others
    }
    return answer.value_or(NSAlert::Stopped);
}

/// Shows it on the display in use; returns nothing if that cannot be reached.
std::optional<int> WindowHelper::show(NSAlert& alert) {
    const auto picture = NSImage::named(alert.icon.value_or("Marvelode.png"));
    Session session{*this, false};
    session.send(AlertRequest{session.window, alert, picture ? picture->url() : std::filesystem::path{}});
    while (const auto event = session.nextEvent()) {
        if (event->kind == Event::Kind::Pressed && event->control < alert.buttons().size()) {
            return NSAlert::FirstButtonReturn + static_cast<int>(event->control);
        }
        if (event->kind == Event::Kind::Closed) {
            break;
        }
        if (!tick(alert, *event)) {
            session.giveUp();
        }
    }
    return _process->hasFoundNoDisplay() ? std::nullopt : std::optional<int>{NSAlert::Stopped};
}

void WindowHelper::runModal(NSPanel& panel, const View& content) {
    Session session{*this, true};
    session.send(PanelRequest{session.window, panel.title, panel.isMovableByWindowBackground, true, false, content,
                              nullptr});
    while (const auto event = session.nextEvent()) {
        if (event->kind == Event::Kind::Closed) {
            break;
        }
        if (!apply(*event, content)) {
            session.giveUp();
        } else if (!session.isOver) {
            session.send(ValuesRequest{session.window, valuesOf(content)});
        }
    }
    if (!session.isOver) {
        panel.close();
    }
}

void WindowHelper::stopModal() {
    const auto innermost =
        std::find_if(_sessions.rbegin(), _sessions.rend(), [](const Session* session) { return session->isPanel; });
    if (innermost != _sessions.rend()) {
        (*innermost)->isOver = true;
    }
}

void WindowHelper::tellIfShown() {
    if (_process->hasShownWindow() && _awaiting) {
        takeAwaiting()();
    }
}

void WindowHelper::closeAll() {
    for (Session* session : _sessions) {
        session->isOver = true;
    }
}

} // namespace platform::linux
