// How requests are written. The functions that encode a part return floating references, which belong to the
// enclosing variant.

#include "platform/Overloaded.hpp"
#include "platform/linux/window/Kinds.hpp"
#include "platform/linux/window/Protocol.hpp"
#include "platform/linux/window/Values.hpp"

#include <string>
#include <variant>
#include <vector>

namespace platform::linux {
namespace {

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

template <typename Enumeration>
gint32 ordinal(Enumeration value) {
    return static_cast<gint32>(value);
}

/// A view or a modifier of that kind, about which `content` is said.
template <typename Kind>
GVariant* named(const Kind&, GVariant* content) {
    return g_variant_new("(sv)", wireName(KindOf<Kind>{}), content);
}

GVariant* encodeModifier(const Modifier& modifier) {
    return std::visit(
        Overloaded{
            [](const modifier::Frame& frame) {
                return named(frame, g_variant_new("(@md@mdi)", encodeNumber(frame.width),
                                                  encodeNumber(frame.height), ordinal(frame.alignment)));
            },
            [](const modifier::Padding& padding) {
                return named(padding,
                             g_variant_new("(i@md)", ordinal(padding.edges), encodeNumber(padding.length)));
            },
            [](const modifier::FontStyle& style) { return named(style, g_variant_new_int32(ordinal(style.font))); },
            [](const modifier::Disabled& disabled) {
                return named(disabled, g_variant_new_boolean(disabled.isDisabled));
            },
            [](const modifier::Focusable& focusable) { return named(focusable, g_variant_new_boolean(TRUE)); },
            [](const modifier::FixedSize& fixed) { return named(fixed, g_variant_new_boolean(TRUE)); },
            [](const modifier::Shortcut& shortcut) {
                return named(shortcut, g_variant_new_int32(ordinal(shortcut.key)));
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
                return named(text, g_variant_builder_end(&runs));
            },
            [](const node::Image& image) {
                return named(image, g_variant_new("(^aydd)", image.image.url().c_str(), image.image.size.width,
                                                  image.image.size.height));
            },
            [](const node::TextField& field) {
                return named(field, g_variant_new("(sx)", field.placeholder.c_str(), gint64{field.value.get()}));
            },
            [](const node::Toggle& toggle) {
                return named(toggle, g_variant_new("(sb)", toggle.title.c_str(), gboolean{toggle.isOn.get()}));
            },
            [](const node::Picker& picker) {
                return named(picker, g_variant_new("(s@asx)", picker.title.c_str(), encodeTexts(picker.items),
                                                   static_cast<gint64>(picker.selection.get())));
            },
            [](const node::Button& button) {
                return named(button, g_variant_new("(sd)", button.label.c_str(), button.labelPadding));
            },
            [](const node::Stack& stack) {
                GVariantBuilder children;
                g_variant_builder_init(&children, G_VARIANT_TYPE("av"));
                for (const View& child : stack.children) {
                    g_variant_builder_add(&children, "v", encodeView(child));
                }
                return named(stack, g_variant_new("(ii@av)", ordinal(stack.axis), ordinal(stack.alignment),
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

} // namespace

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
                                     g_variant_new("(usbbbv)", shown.window, shown.title.c_str(),
                                                   gboolean{shown.isMovableByBackground}, gboolean{shown.isModal},
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

} // namespace platform::linux
