#include "platform/simulated/ViewReader.hpp"

#include "platform/Overloaded.hpp"

#include <functional>

namespace platform::simulated {
namespace {

using Lines = std::vector<std::string>;

std::string joined(const Lines& pieces, std::string_view separator) {
    std::string whole;
    for (const std::string& piece : pieces) {
        if (&piece != &pieces.front()) {
            whole += separator;
        }
        whole += piece;
    }
    return whole;
}

std::string plain(const node::Text& text) {
    std::string whole;
    for (const node::TextRun& run : text.runs) {
        whole += run.link ? "[" + run.string + "](" + *run.link + ")" : run.string;
    }
    return whole;
}

std::string shown(const node::TextField& field, const std::optional<std::string>& typed) {
    const std::string text = typed.value_or(field.text());
    return text.empty() ? "[\"" + field.placeholder + "\"]" : "[" + text + "]";
}

std::string shown(const node::Picker& picker) {
    const std::size_t selected = picker.selection.get();
    return "<" + (selected < picker.items.size() ? picker.items[selected] : "") + ">";
}

bool isDisabled(const View& view) {
    const auto* disabled = view.last<modifier::Disabled>();
    return disabled && disabled->isDisabled;
}

/// The first view in `view`, itself included, that `isWanted`; disabled if anything around it is.
std::optional<Control> find(const View& view, const std::function<bool(const View&)>& isWanted,
                            bool isDisabledAround = false) {
    const bool disabled = isDisabledAround || isDisabled(view);
    if (isWanted(view)) {
        return Control{&view, disabled};
    }
    for (const View& child : childrenOf(view.node)) {
        if (const auto found = find(child, isWanted, disabled)) {
            return found;
        }
    }
    return std::nullopt;
}

/// Whether `view` is what stands beside a label.
bool isControl(const View& view) {
    return std::visit(
        Overloaded{[](const OneOf<node::TextField, node::Toggle, node::Picker> auto&) { return true; },
                   [](const OneOf<node::Text, node::Image, node::Button, node::Stack> auto&) { return false; }},
        view.node);
}

bool isRowLabelled(std::string_view label, const View& view) {
    const auto* stack = std::get_if<node::Stack>(&view.node);
    if (!stack || stack->axis != Axis::Horizontal || stack->children.empty()) {
        return false;
    }
    const auto* text = std::get_if<node::Text>(&stack->children.front().node);
    return text && plain(*text) == label;
}

} // namespace

Lines linesOf(const View& view, const std::optional<std::string>& typed) {
    Lines lines = std::visit(
        Overloaded{
            [](const node::Text& text) { return Lines{plain(text)}; },
            [](const node::Image& picture) { return Lines{"picture " + picture.image.name()}; },
            [&](const node::TextField& field) { return Lines{shown(field, typed)}; },
            [](const node::Toggle& toggle) { return Lines{(toggle.isOn.get() ? "[x]" : "[ ]") + toggle.title}; },
            [](const node::Picker& picker) { return Lines{shown(picker)}; },
            [](const node::Button& button) { return Lines{"(" + button.label + ")"}; },
            [&](const node::Stack& stack) {
                Lines all;
                for (const View& child : stack.children) {
                    const Lines own = linesOf(child, typed);
                    if (stack.axis == Axis::Vertical) {
                        all.insert(all.end(), own.begin(), own.end());
                    } else {
                        all.push_back(joined(own, ", "));
                    }
                }
                return stack.axis == Axis::Vertical ? all : Lines{joined(all, " | ")};
            },
        },
        view.node);
    if (isDisabled(view)) {
        for (std::string& line : lines) {
            line += " disabled";
        }
    }
    return lines;
}

std::optional<Control> controlBeside(std::string_view label, const View& view) {
    const auto row = find(view, [&](const View& each) { return isRowLabelled(label, each); });
    auto control = row ? find(*row->view, isControl) : std::nullopt;
    if (control) {
        control->isDisabled = control->isDisabled || row->isDisabled;
    }
    return control;
}

std::optional<Control> buttonLabelled(std::string_view label, const View& view) {
    return find(view, [&](const View& each) {
        const auto* button = std::get_if<node::Button>(&each.node);
        return button && button->label == label;
    });
}

std::optional<Control> firstField(const View& view) {
    return find(view, [](const View& each) { return std::holds_alternative<node::TextField>(each.node); });
}

std::optional<Control> defaultButton(const View& view) {
    return find(view, [](const View& each) {
        const auto* shortcut = each.last<modifier::Shortcut>();
        return shortcut && shortcut->key == KeyboardShortcut::DefaultAction;
    });
}

} // namespace platform::simulated
