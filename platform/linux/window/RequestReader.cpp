// How requests are read. Whatever is not of exactly the type expected is malformed.

#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/Values.hpp"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform::linux {
namespace {

template <typename... Outputs>
bool unpack(GVariant* variant, const char* type, const char* format, Outputs... outputs) {
    if (!g_variant_is_of_type(variant, G_VARIANT_TYPE(type))) {
        return false;
    }
    g_variant_get(variant, format, outputs...);
    return true;
}

/// A kind and what is said about it, of type "(sv)".
std::pair<std::string_view, VariantHandle> tagged(GVariant* variant) {
    const gchar* kind = nullptr;
    GVariant* content = nullptr;
    g_variant_get(variant, "(&sv)", &kind, &content);
    return {kind, VariantHandle{content}}; // the kind's characters belong to `variant`
}

std::optional<double> decodeNumber(GVariant* maybe) {
    const VariantHandle number{g_variant_get_maybe(maybe)};
    return number ? std::optional{g_variant_get_double(number.get())} : std::nullopt;
}

std::vector<std::string> decodeTexts(GVariant* texts) {
    gsize count = 0;
    const std::unique_ptr<const gchar*, Release<g_free>> pointers{g_variant_get_strv(texts, &count)};
    return {pointers.get(), pointers.get() + count};
}

template <typename Enumeration>
std::optional<Enumeration> enumeration(gint32 ordinal, Enumeration last) {
    return ordinal >= 0 && ordinal <= static_cast<gint32>(last) ? std::optional{static_cast<Enumeration>(ordinal)}
                                                                : std::nullopt;
}

std::optional<Modifier> decodeModifier(GVariant* encoded) {
    const auto [kind, content] = tagged(encoded);
    gint32 ordinal = 0;
    gboolean flag = FALSE;
    if (kind == "frame" && unpack(content.get(), "(mdmdi)", "(@md@mdi)", nullptr, nullptr, &ordinal)) {
        if (const auto alignment = enumeration(ordinal, Alignment::Trailing)) {
            return modifier::Frame{decodeNumber(childOf(content.get(), 0).get()),
                                   decodeNumber(childOf(content.get(), 1).get()), *alignment};
        }
    } else if (kind == "padding" && unpack(content.get(), "(imd)", "(i@md)", &ordinal, nullptr)) {
        if (const auto edges = enumeration(ordinal, Edges::Trailing)) {
            return modifier::Padding{*edges, decodeNumber(childOf(content.get(), 1).get())};
        }
    } else if (kind == "font" && unpack(content.get(), "i", "i", &ordinal)) {
        if (const auto font = enumeration(ordinal, Font::Caption)) {
            return modifier::FontStyle{*font};
        }
    } else if (kind == "disabled" && unpack(content.get(), "b", "b", &flag)) {
        return modifier::Disabled{flag != FALSE};
    } else if (kind == "focusable") {
        return modifier::Focusable{};
    } else if (kind == "fixedSize") {
        return modifier::FixedSize{};
    } else if (kind == "shortcut" && unpack(content.get(), "i", "i", &ordinal)) {
        if (const auto key = enumeration(ordinal, KeyboardShortcut::DefaultAction)) {
            return modifier::Shortcut{*key};
        }
    }
    return std::nullopt;
}

/// Makes the views of one panel anew, with controls that know their values and tell what is done to them.
class ViewDecoder {
public:
    ViewDecoder(std::uint32_t window, std::function<void(const Event&)> tell)
        : _window{window}
        , _tell{std::move(tell)} {}

    std::optional<View> decode(GVariant* encoded);

    std::shared_ptr<std::vector<ControlValue>> values() const { return _values; }

private:
    std::optional<Node> decodeNode(GVariant* encoded);
    std::optional<Node> decodeText(GVariant* runs) const;
    std::optional<Node> decodeStack(GVariant* encoded);

    std::uint32_t addControl(ControlValue value) {
        _values->push_back(value);
        return static_cast<std::uint32_t>(_values->size() - 1);
    }

    /// Tells of something done to `control` that gives it no value.
    std::function<void()> teller(Event::Kind kind, std::uint32_t control) const {
        return [tell = _tell, event = Event{kind, _window, control, std::nullopt}] { tell(event); };
    }

    /// Keeps the control's value here and tells of each change; on the wire it is a `Wire`.
    template <typename Wire, typename Value>
    Binding<Value> bind(std::uint32_t control) const {
        return {[values = _values, control] { return static_cast<Value>(std::get<Wire>(values->at(control))); },
                [values = _values, control, tell = _tell, window = _window](Value value) {
                    values->at(control) = static_cast<Wire>(value);
                    tell({Event::Kind::Changed, window, control, values->at(control)});
                }};
    }

    std::uint32_t _window;
    std::function<void(const Event&)> _tell;
    std::shared_ptr<std::vector<ControlValue>> _values = std::make_shared<std::vector<ControlValue>>();
};

std::optional<Node> ViewDecoder::decodeText(GVariant* runs) const {
    node::Text text;
    for (gsize index = 0; index < g_variant_n_children(runs); ++index) {
        const VariantHandle run = childOf(runs, index);
        const gchar* string = nullptr;
        const gchar* link = nullptr;
        g_variant_get(run.get(), "(&sm&s)", &string, &link);
        text.runs.push_back({string, link ? std::optional<std::string>{link} : std::nullopt});
    }
    return text;
}

std::optional<Node> ViewDecoder::decodeStack(GVariant* encoded) {
    gint32 axisOrdinal = 0;
    gint32 alignmentOrdinal = 0;
    g_variant_get(encoded, "(ii@av)", &axisOrdinal, &alignmentOrdinal, nullptr);
    const auto axis = enumeration(axisOrdinal, Axis::Vertical);
    const auto alignment = enumeration(alignmentOrdinal, Alignment::Trailing);
    if (!axis || !alignment) {
        return std::nullopt;
    }
    node::Stack stack{*axis, *alignment, {}};
    const VariantHandle children = childOf(encoded, 2);
    for (gsize index = 0; index < g_variant_n_children(children.get()); ++index) {
        auto child = decode(unboxed(childOf(children.get(), index).get()).get());
        if (!child) {
            return std::nullopt;
        }
        stack.children.push_back(*std::move(child));
    }
    return stack;
}

std::optional<Node> ViewDecoder::decodeNode(GVariant* encoded) {
    const auto [kind, content] = tagged(encoded);
    const gchar* text = nullptr;
    gboolean flag = FALSE;
    gint64 number = 0;
    double width = 0;
    double height = 0;
    if (kind == "text" && g_variant_is_of_type(content.get(), G_VARIANT_TYPE("a(sms)"))) {
        return decodeText(content.get());
    }
    if (kind == "image" && unpack(content.get(), "(aydd)", "(^&aydd)", &text, &width, &height)) {
        return node::Image{{std::filesystem::path{text}.filename(), text, {width, height}}};
    }
    if (kind == "textField" && unpack(content.get(), "(sx)", "(&sx)", &text, &number)) {
        const auto control = addControl(std::int64_t{number});
        return node::TextField{
            text, bind<std::int64_t, std::int64_t>(control), {}, teller(Event::Kind::Submitted, control)};
    }
    if (kind == "toggle" && unpack(content.get(), "(sb)", "(&sb)", &text, &flag)) {
        return node::Toggle{text, bind<bool, bool>(addControl(flag != FALSE))};
    }
    if (kind == "picker" && unpack(content.get(), "(sasx)", "(&s@asx)", &text, nullptr, &number)) {
        return node::Picker{text, decodeTexts(childOf(content.get(), 1).get()),
                            bind<std::int64_t, std::size_t>(addControl(std::int64_t{number})), nullptr};
    }
    if (kind == "button" && unpack(content.get(), "(sd)", "(&sd)", &text, &width)) {
        return node::Button{text, width, teller(Event::Kind::Pressed, addControl(false))};
    }
    if (kind == "stack" && g_variant_is_of_type(content.get(), G_VARIANT_TYPE("(iiav)"))) {
        return decodeStack(content.get());
    }
    return std::nullopt;
}

std::optional<View> ViewDecoder::decode(GVariant* encoded) {
    if (!g_variant_is_of_type(encoded, G_VARIANT_TYPE("((sv)a(sv))"))) {
        return std::nullopt;
    }
    auto node = decodeNode(childOf(encoded, 0).get());
    if (!node) {
        return std::nullopt;
    }
    View view{*std::move(node), {}};
    const VariantHandle modifiers = childOf(encoded, 1);
    for (gsize index = 0; index < g_variant_n_children(modifiers.get()); ++index) {
        auto modifier = decodeModifier(childOf(modifiers.get(), index).get());
        if (!modifier) {
            return std::nullopt;
        }
        view.modifiers.push_back(*std::move(modifier));
    }
    return view;
}

std::optional<Request> decodeAlert(GVariant* encoded) {
    AlertRequest request{};
    const gchar* picture = nullptr;
    gint32 style = 0;
    const gchar* icon = nullptr;
    const gchar* message = nullptr;
    const gchar* information = nullptr;
    if (!unpack(encoded, "(uayimsssasm(sb))", "(u^&ayim&s&s&s@as@m(sb))", &request.window, &picture, &style, &icon,
                &message, &information, nullptr, nullptr)) {
        return std::nullopt;
    }
    const auto alertStyle = enumeration(style, NSAlert::Style::Critical);
    if (!alertStyle) {
        return std::nullopt;
    }
    request.picture = picture;
    request.alert.alertStyle = *alertStyle;
    request.alert.icon = icon ? std::optional<std::string>{icon} : std::nullopt;
    request.alert.messageText = message;
    request.alert.informativeText = information;
    for (std::string& button : decodeTexts(childOf(encoded, 6).get())) {
        request.alert.addButton(std::move(button));
    }
    if (const VariantHandle checkBox{g_variant_get_maybe(childOf(encoded, 7).get())}) {
        const gchar* title = nullptr;
        gboolean isTicked = FALSE;
        g_variant_get(checkBox.get(), "(&sb)", &title, &isTicked);
        request.alert.setShowsSuppressionButton(true);
        *request.alert.suppressionButton() = {
            isTicked ? NSSuppressionButton::StateValue::On : NSSuppressionButton::StateValue::Off, title};
    }
    return request;
}

std::optional<Request> decodePanel(GVariant* encoded, const std::function<void(const Event&)>& tell) {
    std::uint32_t window = 0;
    const gchar* title = nullptr;
    gboolean isMovable = FALSE;
    gboolean isModal = FALSE;
    gboolean comesUnasked = FALSE;
    if (!unpack(encoded, "(usbbbv)", "(u&sbbbv)", &window, &title, &isMovable, &isModal, &comesUnasked, nullptr)) {
        return std::nullopt;
    }
    ViewDecoder decoder{window, tell};
    auto content = decoder.decode(unboxed(childOf(encoded, 5).get()).get());
    if (!content) {
        return std::nullopt;
    }
    return PanelRequest{
        window,          title, isMovable != FALSE, isModal != FALSE, comesUnasked != FALSE, *std::move(content),
        decoder.values()};
}

std::optional<Request> decodeValues(GVariant* encoded) {
    ValuesRequest request{};
    if (!unpack(encoded, "(uav)", "(u@av)", &request.window, nullptr)) {
        return std::nullopt;
    }
    const VariantHandle values = childOf(encoded, 1);
    for (gsize index = 0; index < g_variant_n_children(values.get()); ++index) {
        const auto value = decodeValue(unboxed(childOf(values.get(), index).get()).get());
        if (!value) {
            return std::nullopt;
        }
        request.values.push_back(*value);
    }
    return request;
}

} // namespace

std::optional<Request> decodeRequest(std::string_view message, const std::function<void(const Event&)>& tell) {
    const VariantHandle request = parsed(message, "(sv)");
    if (!request) {
        return std::nullopt;
    }
    const auto [kind, content] = tagged(request.get());
    if (kind == "alert") {
        return decodeAlert(content.get());
    }
    if (kind == "panel") {
        return decodePanel(content.get(), tell);
    }
    if (kind == "values") {
        return decodeValues(content.get());
    }
    CloseRequest closed{};
    if (kind == "close" && unpack(content.get(), "u", "u", &closed.window)) {
        return closed;
    }
    return std::nullopt;
}

} // namespace platform::linux
