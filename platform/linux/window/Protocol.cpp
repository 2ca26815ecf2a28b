#include "platform/linux/window/Protocol.hpp"

#include "platform/Overloaded.hpp"
#include "platform/linux/window/Values.hpp"

#include <algorithm>
#include <array>

namespace platform::linux {
namespace {

constexpr std::array eventKinds{"noDisplay", "shown", "changed", "pressed", "submitted", "closed"};

std::vector<const Node*> controlsIn(const node::Stack& stack) {
    std::vector<const Node*> controls;
    for (const View& child : stack.children) {
        const auto inside = linux::controlsIn(child);
        controls.insert(controls.end(), inside.begin(), inside.end());
    }
    return controls;
}

} // namespace

std::vector<const Node*> controlsIn(const View& view) {
    using Controls = std::vector<const Node*>;
    return std::visit(Overloaded{
                          [](const node::Text&) { return Controls{}; },
                          [](const node::Image&) { return Controls{}; },
                          [&](const node::TextField&) { return Controls{&view.node}; },
                          [&](const node::Toggle&) { return Controls{&view.node}; },
                          [&](const node::Picker&) { return Controls{&view.node}; },
                          [&](const node::Button&) { return Controls{&view.node}; },
                          [](const node::Stack& stack) { return controlsIn(stack); },
                      },
                      view.node);
}

std::vector<ControlValue> valuesOf(const View& view) {
    std::vector<ControlValue> values;
    for (const Node* control : controlsIn(view)) {
        values.push_back(
            std::visit(Overloaded{
                           [](const node::Text&) -> ControlValue { return false; },
                           [](const node::Image&) -> ControlValue { return false; },
                           [](const node::TextField& field) -> ControlValue { return field.value.get(); },
                           [](const node::Toggle& toggle) -> ControlValue { return toggle.isOn.get(); },
                           [](const node::Picker& picker) -> ControlValue {
                               return static_cast<std::int64_t>(picker.selection.get());
                           },
                           [](const node::Button&) -> ControlValue { return false; },
                           [](const node::Stack&) -> ControlValue { return false; },
                       },
                       *control));
    }
    return values;
}

std::string encode(const Event& event) {
    GVariant* value = event.value ? g_variant_new_variant(encodeValue(*event.value)) : nullptr;
    return printed(g_variant_new("(suu@mv)", eventKinds.at(static_cast<std::size_t>(event.kind)), event.window,
                                 event.control, g_variant_new_maybe(G_VARIANT_TYPE_VARIANT, value)));
}

std::optional<Event> decodeEvent(std::string_view message) {
    const VariantHandle encoded = parsed(message, "(suumv)");
    if (!encoded) {
        return std::nullopt;
    }
    const gchar* kindName = nullptr;
    Event event{};
    g_variant_get(encoded.get(), "(&suu@mv)", &kindName, &event.window, &event.control, nullptr);
    const auto kind = std::find(eventKinds.begin(), eventKinds.end(), std::string_view{kindName});
    if (kind == eventKinds.end()) {
        return std::nullopt;
    }
    event.kind = static_cast<Event::Kind>(kind - eventKinds.begin());
    const VariantHandle boxed{g_variant_get_maybe(childOf(encoded.get(), 3).get())};
    if (boxed) {
        event.value = decodeValue(unboxed(boxed.get()).get());
    }
    const bool isComplete = (event.kind == Event::Kind::Changed) == event.value.has_value();
    return isComplete && event.value.has_value() == (boxed != nullptr) ? std::optional{event} : std::nullopt;
}

} // namespace platform::linux
