#include "platform/linux/window/Protocol.hpp"

#include "platform/linux/window/Values.hpp"

#include <algorithm>
#include <array>

namespace platform::linux {
namespace {

constexpr std::array eventKinds{"noDisplay", "shown", "changed", "pressed", "submitted", "closed"};

} // namespace

std::vector<const Node*> controlsIn(const View& view) {
    if (const auto* stack = std::get_if<node::Stack>(&view.node)) {
        std::vector<const Node*> controls;
        for (const View& child : stack->children) {
            const auto inside = controlsIn(child);
            controls.insert(controls.end(), inside.begin(), inside.end());
        }
        return controls;
    }
    const bool takesNoInput =
        std::holds_alternative<node::Text>(view.node) || std::holds_alternative<node::Image>(view.node);
    return takesNoInput ? std::vector<const Node*>{} : std::vector{&view.node};
}

std::vector<ControlValue> valuesOf(const View& view) {
    std::vector<ControlValue> values;
    for (const Node* control : controlsIn(view)) {
        if (const auto* field = std::get_if<node::TextField>(control)) {
            values.emplace_back(field->value.get());
        } else if (const auto* toggle = std::get_if<node::Toggle>(control)) {
            values.emplace_back(toggle->isOn.get());
        } else if (const auto* picker = std::get_if<node::Picker>(control)) {
            values.emplace_back(static_cast<std::int64_t>(picker->selection.get()));
        } else {
            values.emplace_back(false);
        }
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
