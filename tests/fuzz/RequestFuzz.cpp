// What the program that shows windows may be told by the resident program.

#include "platform/Overloaded.hpp"
#include "platform/linux/window/Protocol.hpp"
#include "tests/fuzz/Fuzz.hpp"

#include <optional>
#include <string>
#include <vector>

namespace {

using namespace platform;
using namespace platform::linux;
using fuzz::require;

/// Uses each control of a panel, and finds that it tells exactly what was done.
class User {
public:
    explicit User(std::optional<Event>& told)
        : _told{told} {}

    void use(const PanelRequest& panel) {
        const std::vector<const Node*> controls = controlsIn(panel.content);
        require(panel.values && panel.values->size() == controls.size(), "each control has a value");
        require(valuesOf(panel.content) == *panel.values, "each control shows its own value");
        for (std::size_t index = 0; index < controls.size(); ++index) {
            _told.reset();
            const auto expected = std::visit([](const auto& control) { return use(control); }, *controls[index]);
            require(_told && _told->kind == expected.kind && _told->value == expected.value &&
                        _told->window == panel.window && _told->control == index,
                    "a control tells what is done to it");
        }
    }

private:
    struct Expected {
        Event::Kind kind = Event::Kind::Closed;
        std::optional<ControlValue> value;
    };

    static Expected use(const node::TextField& field) {
        field.commit("17");
        return {Event::Kind::Changed, std::int64_t{17}};
    }
    static Expected use(const node::Toggle& toggle) {
        const bool isOn = toggle.isOn.get();
        toggle.isOn.set(!isOn);
        return {Event::Kind::Changed, !isOn};
    }
    static Expected use(const node::Picker& picker) {
        picker.select(1);
        return {Event::Kind::Changed, std::int64_t{1}};
    }
    static Expected use(const node::Button& button) {
        button.action();
        return {Event::Kind::Pressed, std::nullopt};
    }
    static Expected use(const auto& /* no control */) { return {Event::Kind::Closed, std::nullopt}; }

    std::optional<Event>& _told;
};

} // namespace

void fuzz::check(std::string_view input) {
    std::optional<Event> told;
    const auto tell = [&](const Event& event) { told = event; };
    const std::optional<Request> request = decodeRequest(input, tell);
    if (!request) {
        return;
    }
    const std::string message = encode(*request);
    const std::optional<Request> again = decodeRequest(message, tell);
    require(again.has_value(), "a request that is sent is understood");
    require(encode(*again) == message, "a request arrives as it was sent");
    if (const auto* panel = std::get_if<PanelRequest>(&*request)) {
        User{told}.use(*panel);
    }
}
