// How the widgets of a window follow what changes: the user's edits on their way out, fresh values and fresh texts.

#include "platform/Overloaded.hpp"
#include "platform/linux/window/helper/Content.hpp"
#include "platform/linux/window/helper/Labels.hpp"
#include "platform/linux/window/helper/Likeness.hpp"

#include <algorithm>
#include <variant>

namespace platform::linux {

void Content::Field::show() {
    shown = node->text();
    gtk_entry_set_text(entry, shown.c_str());
}

void Content::commitEdits() {
    for (const auto& field : _fields) {
        if (field->isEdited()) {
            field->node->commit(field->text());
            field->show();
        }
    }
}

void Content::refresh() {
    for (const auto& field : _fields) {
        if (!field->isEdited() && field->shown != field->node->text()) {
            field->show();
        }
    }
    for (const auto& refresher : _refreshers) {
        refresher();
    }
}

bool Content::follow(const View& fresh) {
    auto widget = _widgets.cbegin();
    return follow(_view, fresh, widget);
}

bool Content::follow(const View& before, const View& fresh, std::vector<GtkWidget*>::const_iterator& widget) {
    if (!isAlike(before, fresh)) {
        return false;
    }
    const bool isShown = std::visit(
        Overloaded{
            [&](const node::Text& text) { return setText(GTK_LABEL(*widget), text); },
            [](const node::Image&) { return true; },
            [](const node::TextField&) { return true; }, // controls show fresh values
            [](const node::Toggle&) { return true; },
            [](const node::Picker&) { return true; },
            [](const node::Button&) { return true; },
            [&](const node::Stack& stack) { return follow(std::get<node::Stack>(before.node), stack, widget); },
        },
        fresh.node);
    if (!isShown) {
        return false;
    }
    GtkWidget* inner = *widget++;
    if (const auto* disabled = fresh.last<modifier::Disabled>()) {
        gtk_widget_set_sensitive(inner, !disabled->isDisabled);
    }
    return true;
}

bool Content::follow(const node::Stack& before, const node::Stack& fresh,
                     std::vector<GtkWidget*>::const_iterator& widget) {
    return std::equal(before.children.begin(), before.children.end(), fresh.children.begin(),
                      [&](const View& one, const View& other) { return follow(one, other, widget); });
}

} // namespace platform::linux
