#pragma once

// Declarative views: a tree of values that says what a window shows and what its controls are bound to. A program
// builds the tree; a desktop visits and draws it, and calls the controls' operations when the user uses them.

#include "platform/NSImage.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace platform {

/// Reads and writes a value that is held elsewhere.
template <typename Value>
struct Binding {
    std::function<Value()> get;
    std::function<void(Value)> set;
};

/// A value that belongs to a view and is shared by all copies of that view.
template <typename Value>
class State {
public:
    explicit State(Value initial)
        : _value{std::make_shared<Value>(std::move(initial))} {}

    const Value& operator*() const { return *_value; }

    Binding<Value> binding() const {
        return {[value = _value] { return *value; }, [value = _value](Value next) { *value = std::move(next); }};
    }

private:
    std::shared_ptr<Value> _value;
};

/// Turns numbers into text and back: whole numbers in plain decimal.
struct NumberFormatter {
    std::string string(std::int64_t number) const;

    /// The number that `text` shows, spaces around it allowed; nothing if it is no whole number or out of range.
    std::optional<std::int64_t> number(const std::string& text) const;
};

enum class Alignment { Leading, Center, Trailing };
enum class Font { Body, Title2, Caption };
enum class KeyboardShortcut { DefaultAction }; ///< `DefaultAction`: the Return key.
enum class Edges { All, Top, Bottom, Leading, Trailing };
enum class Axis { Horizontal, Vertical };

struct View;

/// The kinds of view. Desktops visit them; programs make them with the functions at the end of this file.
namespace node {

/// A piece of a text, which may be a link.
struct TextRun {
    std::string string;
    std::optional<std::string> link; ///< The address that a click on the piece opens in the user's browser.
    bool operator==(const TextRun&) const = default;
};

struct Text {
    std::vector<TextRun> runs;
};

/// A picture drawn at whatever size its frame gives.
struct Image {
    NSImage image;
};

/// A one-line field for a whole number.
struct TextField {
    std::string placeholder; ///< Shown, greyed, while the field is empty.
    Binding<std::int64_t> value;
    NumberFormatter formatter;
    std::function<void()> onSubmit;

    std::string text() const { return formatter.string(value.get()); }

    /// The user finished typing `text` (left the field, or is about to use another control): the bound value
    /// follows, or stays as it was if the text is no number.
    void commit(const std::string& text) const;

    /// The user pressed Return in the field; commits first.
    void submit(const std::string& text) const;
};

/// A switch with a title.
struct Toggle {
    std::string title;
    Binding<bool> isOn;
};

/// A choice of one among several texts.
struct Picker {
    std::string title;
    std::vector<std::string> items;
    Binding<std::size_t> selection; ///< An index into `items`.
    std::function<void()> onChange;

    /// The user picked the item at `index`: the bound value follows and, if that changed it, `onChange` runs.
    void select(std::size_t index) const;
};

struct Button {
    std::string label;
    double labelPadding; ///< In points, on all edges of the label.
    std::function<void()> action;
};

/// Views side by side or one below the other, with the desktop's usual spacing between them.
struct Stack {
    Axis axis;
    Alignment alignment;
    std::vector<View> children;
};

} // namespace node

/// What is done to a view after it was made, in the order of a view's list of modifiers.
namespace modifier {

/// Gives the view a fixed width and height in points, where given, and its place inside them.
struct Frame {
    std::optional<double> width;
    std::optional<double> height;
    Alignment alignment = Alignment::Center;
};

/// Adds empty space at the edges named.
struct Padding {
    Edges edges;
    std::optional<double> length; ///< In points; the desktop's usual padding when absent.
};

struct FontStyle {
    Font font;
};

/// Takes no input while `isDisabled`.
struct Disabled {
    bool isDisabled;
};

/// Can be reached with the keyboard.
struct Focusable {};

/// Is as large as its content wants, whatever the window offers.
struct FixedSize {};

/// A key that presses the view.
struct Shortcut {
    KeyboardShortcut key;
};

/// Runs when the view comes on screen.
struct OnAppear {
    std::function<void()> action;
};

} // namespace modifier

using Node =
    std::variant<node::Text, node::Image, node::TextField, node::Toggle, node::Picker, node::Button, node::Stack>;
using Modifier = std::variant<modifier::Frame, modifier::Padding, modifier::FontStyle, modifier::Disabled,
                              modifier::Focusable, modifier::FixedSize, modifier::Shortcut, modifier::OnAppear>;

/// One view: what it is, and what was done to it.
struct View {
    Node node;
    std::vector<Modifier> modifiers;

    View frame(modifier::Frame frame) && { return std::move(*this).with(frame); }
    View padding() && { return std::move(*this).with(modifier::Padding{Edges::All, std::nullopt}); }
    View padding(Edges edges) && { return std::move(*this).with(modifier::Padding{edges, std::nullopt}); }
    View padding(Edges edges, double length) && { return std::move(*this).with(modifier::Padding{edges, length}); }
    View font(Font font) && { return std::move(*this).with(modifier::FontStyle{font}); }
    View disabled(bool isDisabled) && { return std::move(*this).with(modifier::Disabled{isDisabled}); }
    View focusable() && { return std::move(*this).with(modifier::Focusable{}); }
    View fixedSize() && { return std::move(*this).with(modifier::FixedSize{}); }
    View keyboardShortcut(KeyboardShortcut key) && { return std::move(*this).with(modifier::Shortcut{key}); }
    View onAppear(std::function<void()> action) && {
        return std::move(*this).with(modifier::OnAppear{std::move(action)});
    }

    /// For a text field: what Return in the field does.
    View onSubmit(std::function<void()> action) &&;

    /// For a picker: what a change of the selection does.
    View onChange(std::function<void()> action) &&;

    /// The view's last modifier of that kind; null if it has none. Owned by the view.
    template <typename Kind>
    const Kind* last() const {
        for (auto each = modifiers.rbegin(); each != modifiers.rend(); ++each) {
            if (const Kind* found = std::get_if<Kind>(&*each)) {
                return found;
            }
        }
        return nullptr;
    }

    /// For the application: runs the tree's `OnAppear` actions, those of outer views first.
    void appear() const;

private:
    template <typename Kind>
    View with(Kind modifier) && {
        modifiers.emplace_back(std::in_place_type<Kind>, std::move(modifier));
        return std::move(*this);
    }
};

/// The views that `node` holds, outermost ones only; none for most kinds.
std::span<const View> childrenOf(const Node& node);

/// A text that can be translated: "[label](address)" in `key` becomes a link, and each "%@" is replaced by the next
/// of `arguments`, whose own characters mean nothing.
View Text(const std::string& key, const std::vector<std::string>& arguments = {});

/// A text shown as it stands.
View VerbatimText(std::string string);

View Image(NSImage image);
View TextField(std::string placeholder, Binding<std::int64_t> value, NumberFormatter formatter);
View Toggle(std::string title, Binding<bool> isOn);
View Button(std::string label, double labelPadding, std::function<void()> action);
View HStack(std::vector<View> children);
View VStack(std::vector<View> children);
View VStack(Alignment alignment, std::vector<View> children);

/// A choice among `options`, each a title with the value that it stands for.
template <typename Value>
View Picker(std::string title, Binding<Value> selection, // NOLINT(performance-unnecessary-value-param): as others
            const std::vector<std::pair<std::string, Value>>& options) {
    std::vector<std::string> items;
    std::vector<Value> values;
    for (const auto& [item, value] : options) {
        items.push_back(item);
        values.push_back(value);
    }
    Binding<std::size_t> index{[get = selection.get, values] {
                                   const Value selected = get();
                                   std::size_t position = 0;
                                   while (position < values.size() && values[position] != selected) {
                                       ++position;
                                   }
                                   return position;
                               },
                               [set = selection.set, values](std::size_t position) { set(values.at(position)); }};
    return View{node::Picker{std::move(title), std::move(items), std::move(index), nullptr}, {}};
}

} // namespace platform
