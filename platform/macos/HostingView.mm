#import "platform/macos/HostingView.hpp"

#import "platform/macos/Controls.hpp"
#import "platform/macos/Drawing.hpp"
#import "platform/macos/Strings.hpp"

#import <objc/runtime.h>

using macos::toCocoa;

namespace {

/// Whether Tab stops at `view`.
bool takesKeys(NSView* view) { return [view acceptsFirstResponder] && ![view isKindOfClass:[NSImageView class]]; }

/// Whether the focus ring may be on `view` before the user has pressed Tab.
bool takesFirstFocus(NSView* view) {
    return [view isKindOfClass:[NSTextField class]] ||
           (![view isKindOfClass:[LinkButton class]] && [NSApp isFullKeyboardAccessEnabled]);
}

} // namespace

@implementation HostingView

- (instancetype)initWithRootView:(const platform::View&)rootView {
    if ((self = [super initWithFrame:NSZeroRect])) {
        const macos::Box content = macos::Drawing{self}.draw(rootView, {});
        [self setFrameSize:NSMakeSize(content.size.width, content.size.height)];
        [self place:content];
        [self chainKeyViews];
    }
    return self;
}

- (void)place:(const macos::Box&)content {
    for (const auto& [view, place] : content.views) {
        const NSRect fromBelow =
            NSMakeRect(NSMinX(place), content.size.height - NSMaxY(place), NSWidth(place), NSHeight(place));
        [view setFrame:[view frameForAlignmentRect:fromBelow]];
        [self addSubview:view];
    }
}

/// Leads Tab from control to control, and from the last to the first.
- (void)chainKeyViews {
    NSView* first = nil;
    NSView* previous = nil;
    for (NSView* each in [self subviews]) {
        if (!takesKeys(each)) {
            continue;
        }
        if (!_firstFocusable && takesFirstFocus(each)) {
            _firstFocusable = each;
        }
        first = first ? first : each;
        [previous setNextKeyView:each];
        previous = each;
    }
    [previous setNextKeyView:first];
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

/// Escape closes the panel from the text field, too, where it would only end the editing.
- (BOOL)control:(NSControl*)control textView:(NSTextView*)textView doCommandBySelector:(SEL)command {
    (void)control;
    (void)textView;
    if (!sel_isEqual(command, @selector(cancelOperation:))) {
        return NO;
    }
    [[self window] close];
    return YES;
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
