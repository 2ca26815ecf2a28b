#import "platform/macos/HostingView.hpp"

#include "platform/Fatal.hpp"
#import "platform/macos/Layout.hpp"
#import "platform/macos/Strings.hpp"

#include <cmath>
#include <optional>

using macos::Box;
using macos::toCocoa;

/// A piece of text that opens an address when it is clicked.
@interface LinkButton : NSButton
@end

@implementation LinkButton

- (void)resetCursorRects {
    [self addCursorRect:[self bounds] cursor:[NSCursor pointingHandCursor]];
}

@end

@interface HostingView ()

/// Makes `control` run `action` when the user uses it.
- (void)connect:(NSControl*)control to:(std::function<void()>)action;

/// Lets the bound value of `field` follow what was typed.
- (void)add:(NSTextField*)field for:(const platform::node::TextField&)node;

@end

namespace {

// How a label's letters stand off its frame.
constexpr double labelMargin = 2;

/// What a view inherits from the views around it.
struct Environment {
    platform::Font font = platform::Font::Body;
    bool isDisabled = false;
    bool isDefault = false;
    std::optional<double> width; ///< Offered by the frame around the view.
    std::optional<double> height;
};

NSFont* fontFor(platform::Font font) {
    switch (font) {
    case platform::Font::Body:
        return [NSFont systemFontOfSize:13];
    case platform::Font::Title2:
        return [NSFont systemFontOfSize:17];
    case platform::Font::Caption:
        return [NSFont systemFontOfSize:10];
    }
    platform::fatal();
}

NSTextField* label(const std::string& text, NSFont* font) {
    NSTextField* const field = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
    [field setEditable:NO];
    [field setSelectable:NO];
    [field setBezeled:NO];
    [field setBordered:NO];
    [field setDrawsBackground:NO];
    [field setFont:font];
    [field setStringValue:toCocoa(text)];
    return field;
}

NSButton* link(const std::string& text, NSFont* font) {
    NSDictionary* const attributes = [NSDictionary
        dictionaryWithObjectsAndKeys:font, NSFontAttributeName, [NSColor linkColor], NSForegroundColorAttributeName,
                                     [NSNumber numberWithInt:NSUnderlineStyleSingle], NSUnderlineStyleAttributeName,
                                     nil];
    LinkButton* const button = [[[LinkButton alloc] initWithFrame:NSZeroRect] autorelease];
    [button setBordered:NO];
    [button setAttributedTitle:[[[NSAttributedString alloc] initWithString:toCocoa(text)
                                                                attributes:attributes] autorelease]];
    return button;
}

void open(const std::string& address) {
    [[NSWorkspace sharedWorkspace] openURL:[NSURL URLWithString:toCocoa(address)]];
}

/// Makes the controls of a tree and lays them out.
class Drawing {
public:
    explicit Drawing(HostingView* host)
        : _host{host} {}

    /// The controls of `view` and all views in it, laid out.
    Box draw(const platform::View& view, Environment environment) {
        for (const platform::Modifier& each : view.modifiers) {
            std::visit([&](const auto& modifier) { adjust(environment, modifier); }, each);
        }
        Box box = std::visit([&](const auto& node) { return drawNode(node, environment); }, view.node);
        for (const platform::Modifier& each : view.modifiers) {
            std::visit([&](const auto& modifier) { arrange(box, modifier); }, each);
        }
        return box;
    }

private:
    // What a modifier means to the view inside it

    static void adjust(Environment& environment, const platform::modifier::Frame& frame) {
        // the innermost frame is the one that the view sees, and it stands first
        environment.width = environment.width ? environment.width : frame.width;
        environment.height = environment.height ? environment.height : frame.height;
    }
    static void adjust(Environment& environment, const platform::modifier::FontStyle& style) {
        environment.font = style.font;
    }
    static void adjust(Environment& environment, const platform::modifier::Disabled& disabled) {
        environment.isDisabled = environment.isDisabled || disabled.isDisabled;
    }
    static void adjust(Environment& environment, const platform::modifier::Shortcut& shortcut) {
        environment.isDefault = shortcut.key == platform::KeyboardShortcut::DefaultAction;
    }
    static void adjust(Environment&, const platform::modifier::Padding&) {}
    static void adjust(Environment&, const platform::modifier::Focusable&) {} // the controls are, by themselves
    static void adjust(Environment&, const platform::modifier::FixedSize&) {} // everything has its ideal size
    static void adjust(Environment&, const platform::modifier::OnAppear&) {}  // the application runs it

    // What a modifier does to the space that the view takes

    static void arrange(Box& box, const platform::modifier::Frame& frame) { box.frame(frame); }
    static void arrange(Box& box, const platform::modifier::Padding& padding) { box.pad(padding); }
    template <typename Other>
    static void arrange(Box&, const Other&) {}

    // The kinds of view

    Box drawNode(const platform::node::Text& text, const Environment& environment) {
        NSFont* const font = fontFor(environment.font);
        NSDictionary* const attributes = [NSDictionary dictionaryWithObject:font forKey:NSFontAttributeName];
        Box line;
        for (const platform::node::TextRun& run : text.runs) {
            NSControl* const control = run.link ? link(run.string, font) : label(run.string, font);
            if (run.link) {
                [_host connect:control to:[address = *run.link] { open(address); }];
            }
            [control sizeToFit];
            const double width = std::ceil([toCocoa(run.string) sizeWithAttributes:attributes].width);
            const double height = [control frame].size.height;
            line.append(
                {{{control, NSMakeRect(-labelMargin, 0, width + 2 * labelMargin, height)}}, {width, height}},
                platform::Axis::Horizontal, platform::Alignment::Center, 0);
        }
        return line;
    }

    Box drawNode(const platform::node::Image& image, const Environment& environment) {
        NSImageView* const view = [[[NSImageView alloc] initWithFrame:NSZeroRect] autorelease];
        [view setImageFrameStyle:NSImageFrameNone];
        [view setImageScaling:NSImageScaleProportionallyUpOrDown];
        [view setImage:[NSImage imageNamed:toCocoa(image.image.name)]];
        return Box{view,
                   {environment.width.value_or(image.image.size.width),
                    environment.height.value_or(image.image.size.height)}};
    }

    Box drawNode(const platform::node::TextField& node, const Environment& environment) {
        NSTextField* const field = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
        [field setFont:fontFor(environment.font)];
        [field setStringValue:toCocoa(node.text())];
        [[field cell] setPlaceholderString:toCocoa(node.placeholder)];
        [[field cell] setSendsActionOnEndEditing:NO]; // Return alone submits
        [field setEnabled:!environment.isDisabled];
        [_host add:field for:node];
        return control(field, environment.width);
    }

    Box drawNode(const platform::node::Toggle& node, const Environment& environment) {
        NSButton* const toggle = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
        [toggle setButtonType:NSButtonTypeSwitch];
        [toggle setTitle:toCocoa(node.title)];
        [toggle setImagePosition:node.title.empty() ? NSImageOnly : NSImageLeft];
        [toggle setState:node.isOn.get() ? NSControlStateValueOn : NSControlStateValueOff];
        [toggle setEnabled:!environment.isDisabled];
        [_host connect:toggle to:[toggle, &node] { node.isOn.set([toggle state] == NSControlStateValueOn); }];
        return control(toggle, std::nullopt);
    }

    Box drawNode(const platform::node::Picker& node, const Environment& environment) {
        NSPopUpButton* const picker = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] autorelease];
        for (const std::string& item : node.items) {
            [picker addItemWithTitle:toCocoa(item)];
        }
        [picker selectItemAtIndex:static_cast<NSInteger>(node.selection.get())];
        [picker setEnabled:!environment.isDisabled];
        [_host connect:picker
                    to:[picker, &node] { node.select(static_cast<std::size_t>([picker indexOfSelectedItem])); }];
        return control(picker, environment.width);
    }

    Box drawNode(const platform::node::Button& node, const Environment& environment) {
        NSButton* const button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
        [button setButtonType:NSButtonTypeMomentaryPushIn];
        [button setBezelStyle:NSBezelStyleRounded];
        [button setFont:fontFor(environment.font)];
        [button setTitle:toCocoa(node.label)];
        if (environment.isDefault) {
            [button setKeyEquivalent:@"\r"];
        }
        [button setEnabled:!environment.isDisabled];
        [_host connect:button to:node.action];
        [button sizeToFit];
        const NSSize size = [button frame].size;
        return Box{button, {size.width + 2 * node.labelPadding, size.height + 2 * node.labelPadding}};
    }

    Box drawNode(const platform::node::Stack& node, const Environment& environment) {
        Environment inherited = environment;
        inherited.width.reset();
        inherited.height.reset();
        Box stack;
        for (const platform::View& child : node.children) {
            stack.append(draw(child, inherited), node.axis, node.alignment, macos::stackSpacing);
        }
        return stack;
    }

    static Box control(NSControl* control, std::optional<double> width) {
        [control sizeToFit];
        const NSSize size = [control frame].size;
        return Box{control, {width.value_or(size.width), size.height}};
    }

    HostingView* _host;
};

} // namespace

@implementation HostingView

- (instancetype)initWithRootView:(const platform::View&)rootView {
    if ((self = [super initWithFrame:NSZeroRect])) {
        const Box content = Drawing{self}.draw(rootView, {});
        [self setFrameSize:NSMakeSize(content.size.width, content.size.height)];
        NSView* first = nil;
        NSView* previous = nil;
        for (const auto& [view, frame] : content.views) {
            [view setFrame:NSMakeRect(NSMinX(frame), content.size.height - NSMaxY(frame), NSWidth(frame),
                                      NSHeight(frame))];
            [self addSubview:view];
            if (![view acceptsFirstResponder] || [view isKindOfClass:[NSImageView class]]) {
                continue;
            }
            if (!_firstFocusable && ![view isKindOfClass:[LinkButton class]]) {
                _firstFocusable = view;
            }
            first = first ? first : view;
            [previous setNextKeyView:view];
            previous = view;
        }
        [previous setNextKeyView:first];
    }
    return self;
}

- (NSView*)firstFocusable {
    return _firstFocusable;
}

- (void)forgetRootView {
    for (const auto& [field, node] : _textFields) {
        [field setDelegate:nil];
    }
    for (NSView* each in [self subviews]) {
        if ([each isKindOfClass:[NSControl class]]) {
            [static_cast<NSControl*>(each) setTarget:nil];
            [static_cast<NSControl*>(each) setAction:nullptr];
        }
    }
    _firstFocusable = nil;
    _textFields.clear();
    _actions.clear();
    [self setSubviews:[NSArray array]];
}

- (void)connect:(NSControl*)control to:(std::function<void()>)action {
    [control setTag:static_cast<NSInteger>(_actions.size())];
    [control setTarget:self];
    [control setAction:@selector(controlUsed:)];
    _actions.push_back(std::move(action));
}

- (void)add:(NSTextField*)field for:(const platform::node::TextField&)node {
    _textFields.emplace_back(field, &node);
    [field setDelegate:self];
    [self connect:field to:[field, &node] { node.submit(macos::fromCocoa([field stringValue])); }];
}

- (void)controlUsed:(NSControl*)sender {
    [self commitTexts]; // a click on a button leaves the keyboard, and the unfinished text, with the field
    const auto action = _actions.at(static_cast<std::size_t>([sender tag]));
    action();
}

- (void)controlTextDidEndEditing:(NSNotification*)notification {
    (void)notification;
    [self commitTexts];
}

- (void)commitTexts {
    for (const auto& [field, node] : _textFields) {
        node->commit(macos::fromCocoa([field stringValue]));
        NSString* const text = toCocoa(node->text());
        if (![[field stringValue] isEqualToString:text]) {
            [field setStringValue:text];
        }
    }
}

@end
