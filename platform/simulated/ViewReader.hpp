#pragma once

// Reads a view tree as a user does: as lines of text, and as controls with labels beside them.

#include "platform/View.hpp"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::simulated {

/// The tree as lines from top to bottom. What stands side by side shares a line, separated by " | ":
/// "picture NAME", plain text, "[link](address)", "[text of a field]", "[x]" and "[ ]" for toggles, "<picked
/// item>",
/// "(button)". What takes no input is followed by " disabled". `typed` is what stands in the field if the user is
/// typing; an empty field shows its placeholder in quotation marks.
std::vector<std::string> linesOf(const View& view, const std::optional<std::string>& typed);

/// A control as found in a tree.
struct Control {
    const View* view;
    bool isDisabled;
};

/// The control that stands to the right of the text `label`; nothing if there is none.
std::optional<Control> controlBeside(std::string_view label, const View& view);

/// The button of that label; nothing if there is none.
std::optional<Control> buttonLabelled(std::string_view label, const View& view);

/// The first text field; nothing if there is none.
std::optional<Control> firstField(const View& view);

/// The button that the Return key presses; nothing if there is none.
std::optional<Control> defaultButton(const View& view);

} // namespace platform::simulated
