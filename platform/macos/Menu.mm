#import "platform/macos/Menu.hpp"

#import "platform/macos/Strings.hpp"

using macos::toCocoa;

namespace {

NSMenuItem* itemFor(const platform::NSMenuItem& model, id target) {
    if (model.isSeparatorItem()) {
        return static_cast<NSMenuItem*>([NSMenuItem separatorItem]);
    }
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:toCocoa(model.title)
                                                         action:model.action ? @selector(performItem:) : nullptr
                                                  keyEquivalent:toCocoa(model.keyEquivalent)] autorelease];
    [item setTarget:target];
    if (model.isEnabled) {
        [item setEnabled:*model.isEnabled];
    }
    if (model.hasState()) {
        [item setState:static_cast<NSInteger>(model.state())];
    }
    return item;
}

} // namespace

@implementation MenuTarget

- (instancetype)initWithModel:(std::shared_ptr<platform::NSMenu>)model {
    if ((self = [super init])) {
        _model = std::move(model);
        _menu = [[NSMenu alloc] init];
        [_menu setDelegate:self];
        if (!_model->autoenablesItems) {
            [_menu setAutoenablesItems:NO];
        }
        for (const auto& each : _model->items()) {
            [_menu addItem:itemFor(*each, self)];
        }
    }
    return self;
}

- (void)dealloc {
    [_menu setDelegate:nil];
    [_menu release];
    [super dealloc];
}

- (NSMenu*)menu {
    return _menu;
}

- (void)update {
    NSInteger index = 0;
    for (const auto& each : _model->items()) {
        NSMenuItem* const item = [_menu itemAtIndex:index++];
        const auto state = static_cast<NSInteger>(each->state());
        if ([item state] != state) {
            [item setState:state];
        }
    }
}

- (platform::NSMenuItem&)modelOf:(NSMenuItem*)item {
    return *_model->items().at(static_cast<std::size_t>([_menu indexOfItem:item]));
}

- (void)performItem:(NSMenuItem*)sender {
    _model->performActionForItem([self modelOf:sender]);
}

- (BOOL)validateMenuItem:(NSMenuItem*)item {
    return _model->validates([self modelOf:item]);
}

@end
