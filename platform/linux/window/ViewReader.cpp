#include "platform/linux/window/ViewReader.hpp"

#include <filesystem>
#include <string>
#include <utility>

namespace platform::linux {
namespace {

std::optional<double> readNumber(GVariant* maybe) {
    const VariantHandle number{g_variant_get_maybe(maybe)};
    return number ? std::optional{g_variant_get_double(number.get())} : std::nullopt;
}

std::optional<Modifier> readModifier(KindOf<modifier::Frame>, GVariant* content) {
    gint32 ordinal = 0;
    const bool isFrame = unpack(content, "(mdmdi)", "(@md@mdi)", nullptr, nullptr, &ordinal);
    const auto alignment = enumeration(ordinal, Alignment::Trailing);
    if (!isFrame || !alignment) {
        return std::nullopt;
    }
    return modifier::Frame{readNumber(childOf(content, 0).get()), readNumber(childOf(content, 1).get()),
                           *alignment};
}

std::optional<Modifier> readModifier(KindOf<modifier::Padding>, GVariant* content) {
    gint32 ordinal = 0;
    const bool isPadding = unpack(content, "(imd)", "(i@md)", &ordinal, nullptr);
    const auto edges = enumeration(ordinal, Edges::Trailing);
    if (!isPadding || !edges) {
        return std::nullopt;
    }
    return modifier::Padding{*edges, readNumber(childOf(content, 1).get())};
}

std::optional<Modifier> readModifier(KindOf<modifier::FontStyle>, GVariant* content) {
    gint32 ordinal = 0;
    const bool isFont = unpack(content, "i", "i", &ordinal);
    const auto font = enumeration(ordinal, Font::Caption);
    return isFont && font ? std::optional<Modifier>{modifier::FontStyle{*font}} : std::nullopt;
}

std::optional<Modifier> readModifier(KindOf<modifier::Disabled>, GVariant* content) {
    gboolean flag = FALSE;
    return unpack(content, "b", "b", &flag) ? std::optional<Modifier>{modifier::Disabled{flag != FALSE}}
                                            : std::nullopt;
}

std::optional<Modifier> readModifier(KindOf<modifier::Focusable>, GVariant*) { return modifier::Focusable{}; }

std::optional<Modifier> readModifier(KindOf<modifier::FixedSize>, GVariant*) { return modifier::FixedSize{}; }

std::optional<Modifier> readModifier(KindOf<modifier::Shortcut>, GVariant* content) {
    gint32 ordinal = 0;
    const bool isShortcut = unpack(content, "i", "i", &ordinal);
    const auto key = enumeration(ordinal, KeyboardShortcut::DefaultAction);
    return isShortcut && key ? std::optional<Modifier>{modifier::Shortcut{*key}} : std::nullopt;
}

/// An action, which stays in the resident program.
std::optional<Modifier> readModifier(KindOf<modifier::OnAppear>, GVariant*) { return std::nullopt; }

} // namespace

ViewReader::ViewReader(std::uint32_t window, std::function<void(const Event&)> tell)
    : _window{window}
    , _tell{std::move(tell)} {}

std::uint32_t ViewReader::addControl(ControlValue value) {
    _values->push_back(value);
    return static_cast<std::uint32_t>(_values->size() - 1);
}

/// Tells of something done to `control` that changes no value.
std::function<void()> ViewReader::teller(Event::Kind kind, std::uint32_t control) const {
    return [tell = _tell, event = Event{kind, _window, control, std::nullopt}] { tell(event); };
}

/// Keeps the control's value here and tells of each change; on the wire it is a `Wire`.
template <typename Wire, typename Value>
Binding<Value> ViewReader::bind(std::uint32_t control) const {
    return {[values = _values, control] { return static_cast<Value>(std::get<Wire>(values->at(control))); },
            [values = _values, control, tell = _tell, window = _window](Value value) {
                values->at(control) = static_cast<Wire>(value);
                tell({Event::Kind::Changed, window, control, values->at(control)});
            }};
}

std::optional<Node> ViewReader::read(KindOf<node::Text>, GVariant* content) const {
    if (!g_variant_is_of_type(content, G_VARIANT_TYPE("a(sms)"))) {
        return std::nullopt;
    }
    node::Text text;
    for (gsize index = 0; index < g_variant_n_children(content); ++index) {
        const VariantHandle run = childOf(content, index);
        const gchar* string = nullptr;
        const gchar* link = nullptr;
        g_variant_get(run.get(), "(&sm&s)", &string, &link);
        text.runs.push_back({string, link ? std::optional<std::string>{link} : std::nullopt});
    }
    return text;
}

std::optional<Node> ViewReader::read(KindOf<node::Image>, GVariant* content) const {
    const gchar* path = nullptr;
    double width = 0;
    double height = 0;
    if (!unpack(content, "(aydd)", "(^&aydd)", &path, &width, &height)) {
        return std::nullopt;
    }
    return node::Image{{std::filesystem::path{path}.filename(), path, {width, height}}};
}

std::optional<Node> ViewReader::read(KindOf<node::TextField>, GVariant* content) {
    const gchar* placeholder = nullptr;
    gint64 number = 0;
    if (!unpack(content, "(sx)", "(&sx)", &placeholder, &number)) {
        return std::nullopt;
    }
    const auto control = addControl(std::int64_t{number});
    return node::TextField{
        placeholder, bind<std::int64_t, std::int64_t>(control), {}, teller(Event::Kind::Submitted, control)};
}

std::optional<Node> ViewReader::read(KindOf<node::Toggle>, GVariant* content) {
    const gchar* title = nullptr;
    gboolean isOn = FALSE;
    if (!unpack(content, "(sb)", "(&sb)", &title, &isOn)) {
        return std::nullopt;
    }
    return node::Toggle{title, bind<bool, bool>(addControl(isOn != FALSE))};
}

std::optional<Node> ViewReader::read(KindOf<node::Picker>, GVariant* content) {
    const gchar* title = nullptr;
    gint64 index = 0;
    if (!unpack(content, "(sasx)", "(&s@asx)", &title, nullptr, &index)) {
        return std::nullopt;
    }
    return node::Picker{title, decodeTexts(childOf(content, 1).get()),
                        bind<std::int64_t, std::size_t>(addControl(std::int64_t{index})), nullptr};
}

std::optional<Node> ViewReader::read(KindOf<node::Button>, GVariant* content) {
    const gchar* label = nullptr;
    double padding = 0;
    if (!unpack(content, "(sd)", "(&sd)", &label, &padding)) {
        return std::nullopt;
    }
    return node::Button{label, padding, teller(Event::Kind::Pressed, addControl(false))};
}

std::optional<Node> ViewReader::read(KindOf<node::Stack>, GVariant* content) {
    gint32 axisOrdinal = 0;
    gint32 alignmentOrdinal = 0;
    const bool isStack = unpack(content, "(iiav)", "(ii@av)", &axisOrdinal, &alignmentOrdinal, nullptr);
    const auto axis = enumeration(axisOrdinal, Axis::Vertical);
    const auto alignment = enumeration(alignmentOrdinal, Alignment::Trailing);
    if (!isStack || !axis || !alignment) {
        return std::nullopt;
    }
    node::Stack stack{*axis, *alignment, {}};
    const VariantHandle children = childOf(content, 2);
    for (gsize index = 0; index < g_variant_n_children(children.get()); ++index) {
        auto child = read(unboxed(childOf(children.get(), index).get()).get());
        if (!child) {
            return std::nullopt;
        }
        stack.children.push_back(*std::move(child));
    }
    return stack;
}

std::optional<View> ViewReader::read(GVariant* encoded) {
    if (!g_variant_is_of_type(encoded, G_VARIANT_TYPE("((sv)a(sv))"))) {
        return std::nullopt;
    }
    const VariantHandle what = childOf(encoded, 0);
    const auto [name, content] = tagged(what.get());
    auto node = Named<Node>::decoded(name, [&, inside = content.get()](auto kind) { return read(kind, inside); });
    if (!node) {
        return std::nullopt;
    }
    View view{*std::move(node), {}};
    const VariantHandle modifiers = childOf(encoded, 1);
    for (gsize index = 0; index < g_variant_n_children(modifiers.get()); ++index) {
        const VariantHandle each = childOf(modifiers.get(), index);
        const auto [modifierName, details] = tagged(each.get());
        auto modifier = Named<Modifier>::decoded(
            modifierName, [inside = details.get()](auto kind) { return readModifier(kind, inside); });
        if (!modifier) {
            return std::nullopt;
        }
        view.modifiers.push_back(*std::move(modifier));
    }
    return view;
}

} // namespace platform::linux
