#import "platform/macos/Drawing.hpp"

#include "platform/Overloaded.hpp"
#import "platform/macos/Controls.hpp"
#import "platform/macos/Strings.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <utility>

namespace macos {
namespace {

/// What `view` says about the controls that follow it in its row.
std::string nameGivenBy(const platform::View& view) {
    using namespace platform;
    return std::visit(Overloaded{
                          [](const node::Text& text) {
                              std::string name;
                              for (const node::TextRun& run : text.runs) {
                                  name += run.string;
                              }
                              return name;
                          },
                          [](const node::Image&) { return std::string{}; },
                          [](const node::TextField&) { return std::string{}; },
                          [](const node::Toggle&) { return std::string{}; },
                          [](const node::Picker&) { return std::string{}; },
                          [](const node::Button&) { return std::string{}; },
                          [](const node::Stack&) { return std::string{}; },
                      },
                      view.node);
}

/// For VoiceOver; a control's own title comes before the text beside it.
void setName(NSControl* control, const std::string& title, const std::string& beside) {
    [control setAccessibilityLabel:toCocoa(title.empty() ? beside : title)];
}

Box boxOf(NSControl* control, std::optional<double> width) {
    const platform::NSSize size = visibleSize(control);
    return Box{control, {width.value_or(size.width), size.height}};
}

/// The box of a text, with the spaces at its ends, which a control may leave out of its size.
Box boxOf(NSControl* control, const std::string& text) {
    NSDictionary* const attributes = [NSDictionary dictionaryWithObject:[control font] forKey:NSFontAttributeName];
    const double width = std::ceil([toCocoa(text) sizeWithAttributes:attributes].width);
    return boxOf(control, std::max(width, visibleSize(control).width));
}

std::function<void()> opening(const std::string& address) {
    return [address] { [[NSWorkspace sharedWorkspace] openURL:[NSURL URLWithString:toCocoa(address)]]; };
}

} // namespace

Box Drawing::draw(const platform::View& view, Environment environment) {
    for (const platform::Modifier& each : view.modifiers) {
        std::visit([&](const auto& modifier) { adjust(environment, modifier); }, each);
    }
    Box box = std::visit([&](const auto& node) { return drawNode(node, environment); }, view.node);
    for (const platform::Modifier& each : view.modifiers) {
        std::visit([&](const auto& modifier) { arrange(box, modifier); }, each);
    }
    return box;
}

void Drawing::adjust(Environment& environment, const platform::modifier::Frame& frame) {
    // the innermost frame is the one that the view sees, and it stands first
    environment.width = environment.width ? environment.width : frame.width;
    environment.height = environment.height ? environment.height : frame.height;
}

void Drawing::adjust(Environment& environment, const platform::modifier::FontStyle& style) {
    environment.font = style.font;
}

void Drawing::adjust(Environment& environment, const platform::modifier::Disabled& disabled) {
    environment.isDisabled = environment.isDisabled || disabled.isDisabled;
}

void Drawing::adjust(Environment& environment, const platform::modifier::Shortcut& shortcut) {
    environment.isDefault = shortcut.key == platform::KeyboardShortcut::DefaultAction;
}

Box Drawing::drawNode(const platform::node::Text& text, const Environment& environment) {
    Box line;
    for (const platform::node::TextRun& run : text.runs) {
        NSControl* control = nil;
        if (run.link) {
            control = makeLink(run.string, environment.font);
            [_host connect:control to:opening(*run.link)];
        } else {
            control = makeLabel(run.string, environment.font);
        }
        line.append(boxOf(control, run.string), platform::Axis::Horizontal, platform::Alignment::Center, 0);
    }
    return line;
}

Box Drawing::drawNode(const platform::node::Image& node, const Environment& environment) {
    const platform::NSSize own = node.image.size;
    return Box{makePicture(node.image),
               {environment.width.value_or(own.width), environment.height.value_or(own.height)}};
}

Box Drawing::drawNode(const platform::node::TextField& node, const Environment& environment) {
    NSTextField* const field = makeTextField(node, environment.font);
    [field setEnabled:!environment.isDisabled];
    setName(field, "", environment.name);
    [_host add:field for:node];
    return boxOf(field, environment.width);
}

Box Drawing::drawNode(const platform::node::Toggle& node, const Environment& environment) {
    NSButton* const toggle = makeToggle(node);
    [toggle setEnabled:!environment.isDisabled];
    setName(toggle, node.title, environment.name);
    [_host connect:toggle to:[toggle, &node] { node.isOn.set([toggle state] == NSControlStateValueOn); }];
    return boxOf(toggle, std::nullopt);
}

Box Drawing::drawNode(const platform::node::Picker& node, const Environment& environment) {
    NSPopUpButton* const picker = makePicker(node);
    [picker setEnabled:!environment.isDisabled];
    setName(picker, node.title, environment.name);
    [_host connect:picker
                to:[picker, &node] { node.select(static_cast<std::size_t>([picker indexOfSelectedItem])); }];
    return boxOf(picker, environment.width);
}

Box Drawing::drawNode(const platform::node::Button& node, const Environment& environment) {
    NSButton* const button = makePushButton(node, environment.font, environment.isDefault);
    [button setEnabled:!environment.isDisabled];
    [_host connect:button to:node.action];
    const platform::NSSize size = visibleSize(button);
    return Box{button, {size.width + 2 * node.labelPadding, size.height + 2 * node.labelPadding}};
}

Box Drawing::drawNode(const platform::node::Stack& node, const Environment& environment) {
    Environment inherited = environment;
    inherited.width.reset();
    inherited.height.reset();
    Box stack;
    for (const platform::View& child : node.children) {
        stack.append(draw(child, inherited), node.axis, node.alignment, stackSpacing);
        inherited.name = node.axis == platform::Axis::Horizontal ? nameGivenBy(child) : "";
    }
    return stack;
}

} // namespace macos
