#include "platform/linux/trayless/StatusWindow.hpp"

#include <glib.h>

#include <algorithm>
#include <utility>

namespace platform::linux {
namespace {

constexpr std::uint32_t theWindow = 1;
constexpr const char* title = "Marvelode Timer";
constexpr const char* hide = "Hide this window"; // the one control that is no entry of the menu, and the last
constexpr double pictureHeight = 50;
constexpr double gap = 12;
constexpr double margin = 6; // beyond the one that every panel has
constexpr double labelWidth = 150;
constexpr double switchWidth = 52;
constexpr double buttonWidth = 210;
constexpr std::chrono::seconds firstAbsence{1};
constexpr std::chrono::seconds longestAbsence{600};

modifier::Frame leading(double width) { return {.width = width, .height = {}, .alignment = Alignment::Leading}; }
modifier::Frame trailing(double width) { return {.width = width, .height = {}, .alignment = Alignment::Trailing}; }

} // namespace

StatusWindow::StatusWindow(const HelperProgram& program, std::function<void(NSMenuItem&)> pick, ErrorLog& errorLog,
                           ActivationToken& activationToken)
    : _program{program}
    , _pick{std::move(pick)}
    , _errorLog{errorLog}
    , _activationToken{activationToken} {}

StatusWindow::~StatusWindow() { close(); }

void StatusWindow::open() {
    if (isOnItsWay()) {
        _activationToken.take(); // that window has one
        return;
    }
    tellThoseWhoWait();
    stop(); // a new window comes to the front where an old one may be hidden or elsewhere
    start(false);
}

/// Whether a window comes that the user has asked for, and where the user is.
bool StatusWindow::isOnItsWay() const {
    return isAlive() && !_process->hasShownWindow() && !_cameUnasked && _display == _program.session().display();
}

void StatusWindow::open(std::function<void()> shown) {
    open();
    _awaited.push_back(std::move(shown));
}

void StatusWindow::appear() {
    _isMissed = true;
    if (!isAlive()) {
        stop();
        start(true);
    }
}

void StatusWindow::start(bool isUnasked) {
    _cameUnasked = isUnasked;
    _display = _program.session().display();
    _start = g_get_monotonic_time();
    _process = std::make_unique<WindowProcess>(
        _program, _errorLog, [this] { handleSoon(); }, isUnasked ? std::string{} : _activationToken.take());
    send(isUnasked);
}

void StatusWindow::close() {
    stop();
    _awaited.clear();
    _isMissed = false;
}

void StatusWindow::stop() {
    _process.reset();
    _handling.cancel();
    _return.cancel();
    _absence = firstAbsence;
}

/// Shows the window again after its program has died: sooner if that is rare, later if it dies each time.
void StatusWindow::comeBackLater() {
    const std::chrono::microseconds life{g_get_monotonic_time() - _start};
    _absence = life > longestAbsence ? firstAbsence : _absence;
    _return.start(_absence, [this] { comeBack(); });
    _absence = std::min(2 * _absence, longestAbsence);
}

void StatusWindow::comeBack() {
    if (_program.session().isOver()) {
        _return.start(longestAbsence, [this] { comeBack(); });
    } else {
        start(true);
    }
}

void StatusWindow::show(const StatusContent& content, const std::shared_ptr<NSMenu>& menu) {
    _menu = menu;
    const bool isOutdated = _process && (content.words != _words || !isMenuShown());
    _words = content.words;
    if (isOutdated) {
        send(true);
    }
}

StatusWindow::Entry StatusWindow::entryOf(const NSMenuItem& item) const {
    return {_menu->validates(item), item.state() == NSMenuItem::StateValue::On};
}

bool StatusWindow::isMenuShown() const {
    return std::ranges::equal(itemsOf(_menu), _shown, {}, [this](const auto& item) { return entryOf(*item); });
}

void StatusWindow::send(bool isUnasked) {
    _shown.clear();
    for (const auto& item : itemsOf(_menu)) {
        _shown.push_back(entryOf(*item));
    }
    _process->send(PanelRequest{theWindow, title, true, false, isUnasked, view(), nullptr});
    if (!isAlive()) {
        handleSoon();
    }
}

View StatusWindow::view() {
    if (!_picture) {
        _picture = NSImage::named("Marvelode.png");
    }
    std::vector<View> header;
    if (_picture) {
        header.push_back(Image(*_picture)
                             .frame({.width = pictureHeight / _picture->size.height * _picture->size.width,
                                     .height = pictureHeight,
                                     .alignment = Alignment::Center})
                             .padding(Edges::Trailing, gap));
    }
    header.push_back(VStack(Alignment::Leading, {VerbatimText(title).font(Font::Title2), VerbatimText(_words)}));
    std::vector<View> rows;
    rows.push_back(HStack(std::move(header)).padding(Edges::Bottom, gap));

    _controls.clear();
    for (const auto& item : itemsOf(_menu)) {
        if (item->isSeparatorItem()) {
            continue;
        }
        const auto nothing = [](auto&&...) {};
        const auto isOn = [item] { return item->state() == NSMenuItem::StateValue::On; };
        View row = item->hasState() ? HStack({VerbatimText(item->title).frame(leading(labelWidth)),
                                              Toggle("", {isOn, nothing}).frame(trailing(switchWidth))})
                                    : Button(item->title, 0, nothing).frame(leading(buttonWidth));
        rows.push_back(std::move(row).disabled(!_menu->validates(*item)));
        _controls.push_back(item.get());
    }
    rows.push_back(Button(hide, 0, [] {}).frame(leading(buttonWidth)).padding(Edges::Top, gap));
    return VStack(std::move(rows)).fixedSize().padding(Edges::All, margin);
}

void StatusWindow::handleSoon() {
    if (!_handling.isPending()) {
        _handling.startSoon([this] { handleEvents(); });
    }
}

void StatusWindow::tellThoseWhoWait() {
    if (_process && _process->hasShownWindow()) {
        _isMissed = true;
        for (const auto& shown : std::exchange(_awaited, {})) {
            shown();
        }
    }
}

void StatusWindow::handleEvents() {
    tellThoseWhoWait();
    while (const auto event = _process ? _process->nextEvent() : std::nullopt) {
        apply(*event);
    }
    if (_process && !isAlive()) {
        _process.reset();
        _awaited.clear();
        if (_isMissed) {
            comeBackLater();
        }
    }
}

void StatusWindow::apply(const Event& event) {
    if (event.kind == Event::Kind::Closed || event.control == _controls.size()) {
        close();
    } else if (event.control < _controls.size()) {
        _shown.clear(); // shown anew in any case: the user's pick may have changed nothing but the window
        _pick(*_controls[event.control]);
    }
}

} // namespace platform::linux
