#include "platform/linux/window/helper/Content.hpp"

#include "platform/Overloaded.hpp"
#include "platform/linux/window/helper/Labels.hpp"
#include "platform/linux/window/helper/Pictures.hpp"

#include <cmath>

namespace platform::linux {
namespace {

constexpr int usualSpacing = 8;
constexpr double usualPadding = 16;
constexpr int shortestFieldInCharacters = 3;

int pixels(double points) { return static_cast<int>(std::lround(points)); }

GtkAlign alignOf(Alignment alignment) {
    switch (alignment) {
    case Alignment::Leading:
        return GTK_ALIGN_START;
    case Alignment::Center:
        return GTK_ALIGN_CENTER;
    case Alignment::Trailing:
        return GTK_ALIGN_END;
    }
    return GTK_ALIGN_FILL;
}

/// A box around `widget`, which can be placed inside it.
GtkWidget* boxed(GtkWidget* widget) {
    GtkWidget* box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_box_pack_start(GTK_BOX(box), widget, TRUE, TRUE, 0);
    return box;
}

GtkWidget* padded(GtkWidget* widget, const modifier::Padding& padding) {
    const int length = pixels(padding.length.value_or(usualPadding));
    const auto pad = [&](Edges edge, void (*setMargin)(GtkWidget*, gint)) {
        if (padding.edges == edge || padding.edges == Edges::All) {
            setMargin(widget, length);
        }
    };
    GtkWidget* box = boxed(widget);
    pad(Edges::Top, gtk_widget_set_margin_top);
    pad(Edges::Bottom, gtk_widget_set_margin_bottom);
    pad(Edges::Leading, gtk_widget_set_margin_start);
    pad(Edges::Trailing, gtk_widget_set_margin_end);
    return box;
}

/// Whether a control has no text of its own, so that the text before it is its name.
bool isNameless(const Node& node) {
    return std::visit(Overloaded{
                          [](const node::TextField&) { return true; },
                          [](const node::Toggle& toggle) { return toggle.title.empty(); },
                          [](const node::Picker& picker) { return picker.title.empty(); },
                          [](const node::Text&) { return false; },
                          [](const node::Image&) { return false; },
                          [](const node::Button&) { return false; },
                          [](const node::Stack&) { return false; },
                      },
                      node);
}

} // namespace

Content::Content(const View& view)
    : _view{view} {
    _root = build(view, Font::Body).outer;
}

Content::Widgets Content::build(const View& view, Font font) {
    if (const auto* style = view.last<modifier::FontStyle>()) {
        font = style->font;
    }
    GtkWidget* inner = std::visit(Overloaded{
                                      [&](const node::Text& text) { return label(text, font); },
                                      [&](const node::Image& image) { return build(image, view); },
                                      [&](const node::Stack& stack) { return build(stack, font); },
                                      [&](const auto& control) { return build(control); }, // one for each kind
                                  },
                                  view.node);
    _widgets.push_back(inner);
    GtkWidget* outer = inner;
    for (const Modifier& modifier : view.modifiers) {
        outer = modified(outer, inner, modifier);
    }
    return {outer, inner};
}

GtkWidget* Content::build(const node::Image& image, const View& view) {
    const auto* frame = view.last<modifier::Frame>();
    return picture(image.image.url(),
                   frame ? frame->width.value_or(image.image.size.width) : image.image.size.width,
                   frame ? frame->height.value_or(image.image.size.height) : image.image.size.height);
}

GtkWidget* Content::build(const node::TextField& node) {
    GtkWidget* entry = gtk_entry_new();
    gtk_entry_set_placeholder_text(GTK_ENTRY(entry), node.placeholder.c_str());
    gtk_entry_set_width_chars(GTK_ENTRY(entry), shortestFieldInCharacters);
    gtk_entry_set_input_purpose(GTK_ENTRY(entry), GTK_INPUT_PURPOSE_NUMBER);
    _fields.push_back(std::make_unique<Field>(Field{&node, GTK_ENTRY(entry), {}}));
    Field& field = *_fields.back();
    field.show();
    connect(entry, "activate", [&field] {
        field.node->submit(field.text());
        field.show();
    });
    connect(entry, "focus-out-event", [this](GdkEvent*) -> gboolean {
        commitEdits();
        return GDK_EVENT_PROPAGATE;
    });
    return entry;
}

GtkWidget* Content::build(const node::Toggle& node) {
    GtkWidget* toggle = gtk_switch_new();
    const auto refresher = [&node, toggle] { gtk_switch_set_active(GTK_SWITCH(toggle), node.isOn.get()); };
    refresher();
    _refreshers.emplace_back(refresher);
    connect(toggle, "notify::active", [this, &node, toggle](GParamSpec*) {
        const bool isOn = gtk_switch_get_active(GTK_SWITCH(toggle)) != FALSE;
        if (isOn != node.isOn.get()) {
            commitEdits();
            node.isOn.set(isOn);
        }
    });
    if (node.title.empty()) {
        return toggle;
    }
    GtkWidget* row = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, usualSpacing);
    GtkWidget* label = gtk_label_new_with_mnemonic(_mnemonics.mark(node.title).c_str());
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), toggle);
    setAccessibleName(toggle, node.title.c_str());
    gtk_container_add(GTK_CONTAINER(row), label);
    gtk_container_add(GTK_CONTAINER(row), toggle);
    return row;
}

GtkWidget* Content::build(const node::Picker& node) {
    GtkWidget* picker = gtk_combo_box_text_new();
    for (const std::string& item : node.items) {
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(picker), item.c_str());
    }
    const auto refresher = [&node, picker] {
        gtk_combo_box_set_active(GTK_COMBO_BOX(picker), static_cast<gint>(node.selection.get()));
    };
    refresher();
    _refreshers.emplace_back(refresher);
    connect(picker, "changed", [this, &node, picker] {
        const gint index = gtk_combo_box_get_active(GTK_COMBO_BOX(picker));
        if (index >= 0 && static_cast<std::size_t>(index) != node.selection.get()) {
            commitEdits();
            node.select(static_cast<std::size_t>(index));
        }
    });
    setAccessibleName(picker, node.title.c_str());
    return picker;
}

GtkWidget* Content::build(const node::Button& node) {
    GtkWidget* button = gtk_button_new();
    GtkWidget* label = gtk_label_new_with_mnemonic(_mnemonics.mark(node.label).c_str());
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), button);
    g_object_set(label, "margin", pixels(node.labelPadding), nullptr);
    gtk_container_add(GTK_CONTAINER(button), label);
    connect(button, "clicked", [this, &node] {
        commitEdits();
        node.action();
    });
    return button;
}

GtkWidget* Content::build(const node::Stack& stack, Font font) {
    const bool isVertical = stack.axis == Axis::Vertical;
    GtkWidget* box = gtk_box_new(isVertical ? GTK_ORIENTATION_VERTICAL : GTK_ORIENTATION_HORIZONTAL, usualSpacing);
    GtkWidget* precedingLabel = nullptr;
    for (const View& child : stack.children) {
        const Widgets widgets = build(child, font);
        if (isVertical) {
            gtk_widget_set_halign(widgets.outer, alignOf(stack.alignment));
        } else {
            gtk_widget_set_valign(widgets.outer, alignOf(stack.alignment));
        }
        gtk_container_add(GTK_CONTAINER(box), widgets.outer);
        if (precedingLabel && isNameless(child.node)) {
            name(widgets.inner, precedingLabel);
        }
        precedingLabel = std::holds_alternative<node::Text>(child.node) ? widgets.inner : nullptr;
    }
    return box;
}

GtkWidget* Content::framed(GtkWidget* widget, const modifier::Frame& frame) {
    const bool isWideButton = GTK_IS_BUTTON(widget) && frame.width; // fills its frame, as buttons in a column do
    gtk_widget_set_halign(widget, isWideButton ? GTK_ALIGN_FILL : alignOf(frame.alignment));
    gtk_widget_set_valign(widget, GTK_ALIGN_CENTER);
    GtkWidget* box = boxed(widget);
    gtk_widget_set_size_request(box, frame.width ? pixels(*frame.width) : -1,
                                frame.height ? pixels(*frame.height) : -1);
    if (frame.width) {
        auto& column = _columns[*frame.width];
        if (!column) {
            column.reset(gtk_size_group_new(GTK_SIZE_GROUP_HORIZONTAL));
        }
        gtk_size_group_add_widget(column.get(), box);
    }
    return box;
}

GtkWidget* Content::modified(GtkWidget* widget, GtkWidget* inner, const Modifier& modifier) {
    std::visit(
        Overloaded{
            [&](const modifier::Frame& frame) { widget = framed(widget, frame); },
            [&](const modifier::Padding& padding) { widget = padded(widget, padding); },
            [&](const modifier::Disabled& disabled) { gtk_widget_set_sensitive(inner, !disabled.isDisabled); },
            [&](const modifier::FixedSize&) {
                gtk_widget_set_halign(widget, GTK_ALIGN_CENTER);
                gtk_widget_set_valign(widget, GTK_ALIGN_CENTER);
            },
            [&](const modifier::Shortcut&) { // the default action is the only kind
                gtk_widget_set_can_default(inner, TRUE);
                gtk_style_context_add_class(gtk_widget_get_style_context(inner), GTK_STYLE_CLASS_SUGGESTED_ACTION);
                _defaultButton = inner;
            },
            [](const modifier::Focusable&) {}, // as all controls here are
            [](const modifier::FontStyle&) {}, // heeded where the text is made
            [](const modifier::OnAppear&) {},  // stays in the resident program
        },
        modifier);
    return widget;
}

void Content::name(GtkWidget* widget, GtkWidget* label) {
    const std::string title = gtk_label_get_text(GTK_LABEL(label));
    setAccessibleName(widget, title.c_str());
    gtk_label_set_text_with_mnemonic(GTK_LABEL(label), _mnemonics.mark(title).c_str());
    gtk_label_set_mnemonic_widget(GTK_LABEL(label), widget);
}

} // namespace platform::linux
