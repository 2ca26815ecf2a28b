#include "platform/simulated/SimulatedDesktop.hpp"

// The windows of a simulated desktop, and what its user does in the one in front.

#include "platform/simulated/ViewReader.hpp"

#include <algorithm>
#include <utility>

namespace platform::simulated {
namespace {

/// The kind of view that `control` is; throws if it is another or takes no input.
template <typename Kind>
const Kind& usable(std::optional<Control> control, std::string_view kind, std::string_view label) {
    const Kind* found = control ? std::get_if<Kind>(&control->view->node) : nullptr;
    if (!found) {
        missing(kind, label);
    }
    if (control->isDisabled) {
        throw Unexpected{"the " + std::string{kind} + " " + inQuotes(label) + " is disabled"};
    }
    return *found;
}

} // namespace

/// Puts a session on top of the others for as long as it exists.
class SimulatedDesktop::SessionOnTop {
public:
    SessionOnTop(SimulatedDesktop& desktop, Session& session, std::string window)
        : _desktop{desktop}
        , _window{std::move(window)} {
        if (!_desktop._isProgramsTurn) {
            throw Unexpected{_window + " cannot be shown before launch() or outside of the program: use perform()"};
        }
        _desktop._sessions.push_back(&session);
        ++_desktop._windowsOpened;
        _desktop.note(Journal::Kind::Shown, _window);
    }
    ~SessionOnTop() {
        _desktop._sessions.pop_back();
        _desktop.note(Journal::Kind::Closed, _window);
    }
    SessionOnTop(const SessionOnTop&) = delete;
    SessionOnTop& operator=(const SessionOnTop&) = delete;

private:
    SimulatedDesktop& _desktop;
    std::string _window;
};

int SimulatedDesktop::runAlert(NSAlert& alert) {
    Session session;
    session.alert = &alert;
    const std::string texts = inQuotes(alert.messageText) + " " + inQuotes(alert.informativeText);
    const SessionOnTop onTop{*this, session, "alert " + texts};
    _unseenAlerts.push_back(texts);
    while (!session.answer && !_isTerminating) {
        turn(RunLoopMode::Modal);
    }
    return session.answer.value_or(NSAlert::Stopped);
}

void SimulatedDesktop::runModal(NSPanel& panel, const View& content) {
    Session session;
    session.panel = &panel;
    session.content = &content;
    const SessionOnTop onTop{*this, session, "panel " + inQuotes(panel.title)};
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

void SimulatedDesktop::makeAlertVanish() {
    if (!alertIsUp()) {
        throw Unexpected{"there is no alert in front"};
    }
    _sessions.back()->answer = NSAlert::Stopped;
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

} // namespace platform::simulated
