#import "platform/macos/StatusItem.hpp"

#include "platform/Fatal.hpp"
#import "platform/macos/Strings.hpp"

/// Receives the actions of the status item's button, of which there are none: a click opens the menu.
@interface StatusButtonTarget : NSObject
+ (StatusButtonTarget*)shared;
@end

@implementation StatusButtonTarget

+ (StatusButtonTarget*)shared {
    static StatusButtonTarget* const target = [[StatusButtonTarget alloc] init];
    return target;
}

@end

namespace macos {
namespace {

platform::NSSize sizeOf(NSImage* image) { return {[image size].width, [image size].height}; }

NSColor* colorOf(const platform::NSColor& color) {
    if (color == platform::NSColor::red) {
        return [NSColor redColor];
    }
    return [NSColor colorWithCalibratedRed:color.redComponent
                                     green:color.greenComponent
                                      blue:color.blueComponent
                                     alpha:1];
}

NSAttributedString* attributed(const platform::NSAttributedString& title) {
    NSMutableDictionary* const attributes = [NSMutableDictionary dictionary];
    if (title.font) {
        [attributes setObject:[NSFont monospacedSystemFontOfSize:title.font->size weight:NSFontWeightRegular]
                       forKey:NSFontAttributeName];
    }
    if (title.foregroundColor) {
        [attributes setObject:colorOf(*title.foregroundColor) forKey:NSForegroundColorAttributeName];
    }
    return [[[NSAttributedString alloc] initWithString:toCocoa(title.string) attributes:attributes] autorelease];
}

} // namespace

StatusItem::StatusItem(std::shared_ptr<platform::NSStatusItem> model)
    : _model{std::move(model)}
    , _item{[[[NSStatusBar systemStatusBar] statusItemWithLength:_model->length] retain]} {
    [[_item.get() button] setImagePosition:NSImageLeft]; // and the text beside it
}

StatusItem::~StatusItem() { [[NSStatusBar systemStatusBar] removeStatusItem:_item.get()]; }

void StatusItem::update() {
    NSStatusBarButton* const button = [_item.get() button];
    if (!button) {
        platform::fatal();
    }
    updateButton(button);
    if (_shown.menu != _model->menu()) {
        _shown.menu = _model->menu();
        _menuTarget = Retained<MenuTarget>{[[MenuTarget alloc] initWithModel:_shown.menu]};
        [_item.get() setMenu:[_menuTarget.get() menu]];
    }
    [_menuTarget.get() update];
}

void StatusItem::updateButton(NSStatusBarButton* button) {
    const platform::NSStatusBarButton& model = *_model->button();
    if (_shown.target != model.target) {
        _shown.target = model.target;
        [button setTarget:[StatusButtonTarget shared]];
    }
    if (_shown.actionMask != model.actionMask()) {
        _shown.actionMask = model.actionMask();
        [button sendActionOn:static_cast<NSEventMask>(_shown.actionMask)];
    }
    if (model.image() && _shown.image != model.image() && !isAboutToBeSized(*model.image())) {
        updateImage(button, *model.image());
        _shown.image = model.image();
    }
    if (_shown.title != model.attributedTitle()) {
        _shown.title = model.attributedTitle();
        [button setAttributedTitle:attributed(_shown.title)];
    }
}

void StatusItem::updateImage(NSStatusBarButton* button, const platform::NSImage& image) {
    if (!_shown.image || _shown.image->name() != image.name()) {
        // a copy, because its size is changed below and the named picture is shared by the whole program
        const Retained<NSImage> copy{[[NSImage imageNamed:toCocoa(image.name())] copy]};
        [button setImage:copy.get()];
    }
    if (image.size != sizeOf([button image])) {
        [[button image] setSize:NSMakeSize(image.size.width, image.size.height)];
    }
}

/// The program sets its picture every second and then the size of it; the picture on screen keeps its size
/// meanwhile.
bool StatusItem::isAboutToBeSized(const platform::NSImage& image) const {
    return _shown.image && _shown.image->name() == image.name() &&
           image.size == sizeOf([NSImage imageNamed:toCocoa(image.name())]);
}

} // namespace macos
