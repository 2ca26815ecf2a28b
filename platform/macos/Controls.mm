#import "platform/macos/Controls.hpp"

#include "platform/Fatal.hpp"
#import "platform/macos/Strings.hpp"

@implementation LinkButton

- (void)resetCursorRects {
    [self addCursorRect:[self bounds] cursor:[NSCursor pointingHandCursor]];
}

@end

namespace macos {
namespace {

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

NSAttributedString* linkTitle(const std::string& text, NSFont* font) {
    NSMutableParagraphStyle* const oneLine = [[[NSMutableParagraphStyle alloc] init] autorelease];
    [oneLine setLineBreakMode:NSLineBreakByClipping];
    [oneLine setAlignment:NSTextAlignmentCenter];
    NSDictionary* const attributes = [NSDictionary
        dictionaryWithObjectsAndKeys:font, NSFontAttributeName, [NSColor controlAccentColor],
                                     NSForegroundColorAttributeName, oneLine, NSParagraphStyleAttributeName, nil];
    return [[[NSAttributedString alloc] initWithString:toCocoa(text) attributes:attributes] autorelease];
}

} // namespace

NSTextField* makeLabel(const std::string& text, platform::Font font) {
    NSTextField* const label = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
    [label setEditable:NO];
    [label setSelectable:NO];
    [label setBezeled:NO];
    [label setBordered:NO];
    [label setDrawsBackground:NO];
    [label setTextColor:[NSColor labelColor]];
    [label setFont:fontFor(font)];
    [label setStringValue:toCocoa(text)];
    [label sizeToFit];
    return label;
}

LinkButton* makeLink(const std::string& text, platform::Font font) {
    LinkButton* const link = [[[LinkButton alloc] initWithFrame:NSZeroRect] autorelease];
    [link setBordered:NO];
    [link setFont:fontFor(font)];
    [link setAttributedTitle:linkTitle(text, fontFor(font))];
    [link setAccessibilityRole:NSAccessibilityLinkRole];
    [link sizeToFit];
    return link;
}

NSImageView* makePicture(const platform::NSImage& image) {
    NSImageView* const picture = [[[NSImageView alloc] initWithFrame:NSZeroRect] autorelease];
    [picture setImageFrameStyle:NSImageFrameNone];
    [picture setImageScaling:NSImageScaleProportionallyUpOrDown];
    [picture setImage:[NSImage imageNamed:toCocoa(image.name())]];
    return picture;
}

NSTextField* makeTextField(const platform::node::TextField& node, platform::Font font) {
    NSTextField* const field = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
    [field setFont:fontFor(font)];
    [[field cell] setUsesSingleLineMode:YES];
    [[field cell] setScrollable:YES];
    [field setStringValue:toCocoa(node.text())];
    [[field cell] setPlaceholderString:toCocoa(node.placeholder)];
    [[field cell] setSendsActionOnEndEditing:NO]; // Return alone submits
    [field sizeToFit];
    return field;
}

NSButton* makeToggle(const platform::node::Toggle& node) {
    NSButton* const toggle = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [toggle setButtonType:NSButtonTypeSwitch];
    [toggle setTitle:toCocoa(node.title)];
    [toggle setImagePosition:node.title.empty() ? NSImageOnly : NSImageLeft];
    [toggle setState:node.isOn.get() ? NSControlStateValueOn : NSControlStateValueOff];
    [toggle sizeToFit];
    return toggle;
}

NSPopUpButton* makePicker(const platform::node::Picker& node) {
    NSPopUpButton* const picker = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] autorelease];
    for (const std::string& item : node.items) {
        [picker addItemWithTitle:toCocoa(item)];
    }
    [picker selectItemAtIndex:static_cast<NSInteger>(node.selection.get())];
    [picker sizeToFit];
    return picker;
}

NSButton* makePushButton(const platform::node::Button& node, platform::Font font, bool isDefault) {
    NSButton* const button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [button setButtonType:NSButtonTypeMomentaryPushIn];
    [button setBezelStyle:NSBezelStyleRegularSquare]; // a rounded one would not grow with its padding
    [button setFont:fontFor(font)];
    [button setTitle:toCocoa(node.label)];
    if (isDefault) {
        [button setKeyEquivalent:@"\r"];
    }
    [button sizeToFit];
    return button;
}

platform::NSSize visibleSize(NSView* view) {
    const NSSize size = [view alignmentRectForFrame:[view frame]].size;
    return {size.width, size.height};
}

} // namespace macos
