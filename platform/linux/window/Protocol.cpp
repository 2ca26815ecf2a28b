#include "platform/linux/window/Protocol.hpp"

#include "platform/Overloaded.hpp"

#include <glib.h>

#include <algorithm>
#include <array>
#include <utility>

namespace platform::freedesktop {
namespace {

struct Release {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
    void operator()(gchar* text) const { g_free(text); }
    void operator()(const gchar** texts) const { g_free(texts); } // the texts themselves belong to a variant
};
using Variant = std::unique_ptr<GVariant, Release>;
using Characters = std::unique_ptr<gchar, Release>;

constexpr std::array eventKinds{"shown", "changed", "pressed", "submitted", "closed"};

// Encoding: these functions give floating references, which the enclosing variant takes over.

std::string printed(GVariant* message) {
    const Variant owned{g_variant_ref_sink(message)};
    return Characters{g_variant_print(message, TRUE)}.get();
}

GVariant* encodeTexts(const std::vector<std::string>& texts) {
    std::vector<const gchar*> pointers;
    pointers.reserve(texts.size());
    for (const std::string& text : texts) {
        pointers.push_back(text.c_str());
    }
    return g_variant_new_strv(pointers.data(), static_cast<gssize>(pointers.size()));
}

GVariant* encodeNumber(const std::optional<double>& number) {
    return g_variant_new_maybe(G_VARIANT_TYPE_DOUBLE, number ? g_variant_new_double(*number) : nullptr);
}

GVariant* encodeValue(const ControlValue& value) {
    return std::visit(Overloaded{[](bool isOn) { return g_variant_new_boolean(isOn); },
                                 [](std::int64_t number) { return g_variant_new_int64(number); }},
                      value);
}

template <typename Enumeration>
gint32 ordinal(Enumeration value) {
    return static_cast<gint32>(value);
}

GVariant* encodeModifier(const Modifier& modifier) {
    return std::visit(
        Overloaded{
            [](const modifier::Frame& frame) {
                return g_variant_new("(sv)", "frame",
                                     g_variant_new("(@md@mdi)", encodeNumber(frame.width),
                                                   encodeNumber(frame.height), ordinal(frame.alignment)));
            },
            [](const modifier::Padding& padding) {
                return g_variant_new("(sv)", "padding",
                                     g_variant_new("(i@md)", ordinal(padding.edges), encodeNumber(padding.length)));
            },
            [](const modifier::FontStyle& style) {
                return g_variant_new("(sv)", "font", g_variant_new_int32(ordinal(style.font)));
            },
            [](const modifier::Disabled& disabled) {
                return g_variant_new("(sv)", "disabled", g_variant_new_boolean(disabled.isDisabled));
            },
            [](const modifier::Focusable&) {
                return g_variant_new("(sv)", "focusable", g_variant_new_boolean(TRUE));
            },
            [](const modifier::FixedSize&) {
                return g_variant_new("(sv)", "fixedSize", g_variant_new_boolean(TRUE));
            },
            [](const modifier::Shortcut& shortcut) {
                return g_variant_new("(sv)", "shortcut", g_variant_new_int32(ordinal(shortcut.key)));
            },
            [](const modifier::OnAppear&) { // an action, which the resident program has run already
                return static_cast<GVariant*>(nullptr);
            },
        },
        modifier);
}

GVariant* encodeView(const View& view);

GVariant* encodeNode(const Node& node) {
    return std::visit(
        Overloaded{
            [](const node::Text& text) {
                GVariantBuilder runs;
                g_variant_builder_init(&runs, G_VARIANT_TYPE("a(sms)"));
                for (const node::TextRun& run : text.runs) {
                    g_variant_builder_add(&runs, "(sms)", run.string.c_str(),
                                          run.link ? run.link->c_str() : nullptr);
                }
                return g_variant_new("(sv)", "text", g_variant_builder_end(&runs));
            },
            [](const node::Image& image) {
                return g_variant_new("(sv)", "image",
                                     g_variant_new("(^aydd)", image.image.url.c_str(), image.image.size.width,
                                                   image.image.size.height));
            },
            [](const node::TextField& field) {
                return g_variant_new("(sv)", "textField",
                                     g_variant_new("(sx)", field.placeholder.c_str(), gint64{field.value.get()}));
            },
            [](const node::Toggle& toggle) {
                return g_variant_new("(sv)", "toggle",
                                     g_variant_new("(sb)", toggle.title.c_str(), gboolean{toggle.isOn.get()}));
            },
            [](const node::Picker& picker) {
                return g_variant_new("(sv)", "picker",
                                     g_variant_new("(s@asx)", picker.title.c_str(), encodeTexts(picker.items),
                                                   static_cast<gint64>(picker.selection.get())));
            },
            [](const node::Button& button) {
                return g_variant_new("(sv)", "button",
                                     g_variant_new("(sd)", button.label.c_str(), button.labelPadding));
            },
            [](const node::Stack& stack) {
                GVariantBuilder children;
                g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
                for (const View& child : stack.children) {
                    g_variant_builder_add(&children, "v", encodeView(child));
                }
                return g_variant_new("(sv)", "stack",
                                     g_variant_new("(ii@av)", ordinal(stack.axis), ordinal(stack.alignment),
                                                   g_variant_builder_end(&children)));
            },
        },
        node);
}

GVariant* encodeView(const View& view) {
    GVariantBuilder modifiers;
    g_variant_builder_init(&modifiers, G_VARIANT_TYPE("a(sv)"));
    for (const Modifier& modifier : view.modifiers) {
        if (GVariant* encoded = encodeModifier(modifier)) {
            g_variant_builder_add_value(&modifiers, encoded);
        }
    }
    return g_variant_new("(@(sv)@a(sv))", encodeNode(view.node), g_variant_builder_end(&modifiers));
}

GVariant* encodeCheckBox(const NSSuppressionButton* checkBox) {
    return g_variant_new_maybe(G_VARIANT_TYPE("(sb)"),
                               checkBox ? g_variant_new("(sb)", checkBox->title.c_str(),
                                                        checkBox->state == NSSuppressionButton::StateValue::On)
                                        : nullptr);
}

// Decoding: whatever is not of exactly the type expected is malformed.

template <typename... Outputs>
bool unpack(GVariant* variant, const char* type, const char* format, Outputs... outputs) {
    if (!g_variant_is_of_type(variant, G_VARIANT_TYPE(type))) {
        return false;
    }
    g_variant_get(variant, format, outputs...);
    return true;
}

Variant childOf(GVariant* variant, gsize index) { return Variant{g_variant_get_child_value(variant, index)}; }

Variant unboxed(GVariant* boxed) { return Variant{g_variant_get_variant(boxed)}; }

/// A kind and what is said about it, of type "(sv)".
std::pair<std::string_view, Variant> tagged(GVariant* variant) {
    const gchar* kind = nullptr;
    GVariant* content = nullptr;
    g_variant_get(variant, "(&sv)", &kind, &content);
    return {kind, Variant{content}}; // the kind's characters belong to `variant`
}

Variant parsed(std::string_view message, const char* type) {
    return Variant{
        g_variant_parse(G_VARIANT_TYPE(type), message.data(), message.data() + message.size(), nullptr, nullptr)};
}

std::optional<double> decodeNumber(GVariant* maybe) {
    const Variant number{g_variant_get_maybe(maybe)};
    return number ? std::optional{g_variant_get_double(number.get())} : std::nullopt;
}

std::vector<std::string> decodeTexts(GVariant* texts) {
    gsize count = 0;
    const std::unique_ptr<const gchar*, Release> pointers{g_variant_get_strv(texts, &count)};
    return {pointers.get(), pointers.get() + count};
}

std::optional<ControlValue> decodeValue(GVariant* value) {
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_BOOLEAN)) {
        return g_variant_get_boolean(value) != FALSE;
    }
    if (g_variant_is_of_type(value, G_VARIANT_TYPE_INT64)) {
        return std::int64_t{g_variant_get_int64(value)};
    }
    return std::nullopt;
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
        const Variant run = childOf(runs, index);
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
    const Variant children = childOf(encoded, 2);
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
    const Variant modifiers = childOf(encoded, 1);
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
    if (const Variant checkBox{g_variant_get_maybe(childOf(encoded, 7).get())}) {
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
    gboolean comesUnasked = FALSE;
    if (!unpack(encoded, "(usbbv)", "(u&sbbv)", &window, &title, &isMovable, &comesUnasked, nullptr)) {
        return std::nullopt;
    }
    ViewDecoder decoder{window, tell};
    auto content = decoder.decode(unboxed(childOf(encoded, 4).get()).get());
    if (!content) {
        return std::nullopt;
    }
    return PanelRequest{window,          title, isMovable != FALSE, comesUnasked != FALSE, *std::move(content),
                        decoder.values()};
}

std::optional<Request> decodeValues(GVariant* encoded) {
    ValuesRequest request{};
    if (!unpack(encoded, "(uav)", "(u@av)", &request.window, nullptr)) {
        return std::nullopt;
    }
    const Variant values = childOf(encoded, 1);
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

std::string encode(const Request& request) {
    return printed(std::visit(
        Overloaded{
            [](const AlertRequest& shown) {
                const NSAlert& alert = shown.alert;
                return g_variant_new(
                    "(sv)", "alert",
                    g_variant_new("(u^ayimsss@as@m(sb))", shown.window, shown.picture.c_str(),
                                  ordinal(alert.alertStyle), alert.icon ? alert.icon->c_str() : nullptr,
                                  alert.messageText.c_str(), alert.informativeText.c_str(),
                                  encodeTexts(alert.buttons()), encodeCheckBox(alert.suppressionButton())));
            },
            [](const PanelRequest& shown) {
                return g_variant_new("(sv)", "panel",
                                     g_variant_new("(usbbv)", shown.window, shown.title.c_str(),
                                                   gboolean{shown.isMovableByBackground},
                                                   gboolean{shown.comesUnasked}, encodeView(shown.content)));
            },
            [](const ValuesRequest& fresh) {
                GVariantBuilder values;
                g_variant_builder_init(&values, G_VARIANT_TYPE("av"));
                for (const ControlValue& value : fresh.values) {
                    g_variant_builder_add(&values, "v", encodeValue(value));
                }
                return g_variant_new("(sv)", "values",
                                     g_variant_new("(u@av)", fresh.window, g_variant_builder_end(&values)));
            },
            [](const CloseRequest& closed) {
                return g_variant_new("(sv)", "close", g_variant_new_uint32(closed.window));
            },
        },
        request));
}

std::string encode(const Event& event) {
    GVariant* value = event.value ? g_variant_new_variant(encodeValue(*event.value)) : nullptr;
    return printed(g_variant_new("(suu@mv)", eventKinds.at(static_cast<std::size_t>(event.kind)), event.window,
                                 event.control, g_variant_new_maybe(G_VARIANT_TYPE_VARIANT, value)));
}

std::optional<Request> decodeRequest(std::string_view message, const std::function<void(const Event&)>& tell) {
    const Variant request = parsed(message, "(sv)");
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

std::optional<Event> decodeEvent(std::string_view message) {
    const Variant encoded = parsed(message, "(suumv)");
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
    const Variant boxed{g_variant_get_maybe(childOf(encoded.get(), 3).get())};
    if (boxed) {
        event.value = decodeValue(unboxed(boxed.get()).get());
    }
    const bool isComplete = (event.kind == Event::Kind::Changed) == event.value.has_value();
    return isComplete && event.value.has_value() == (boxed != nullptr) ? std::optional{event} : std::nullopt;
}

} // namespace platform::freedesktop
