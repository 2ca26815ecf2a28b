#import "platform/macos/Panel.hpp"

#import "platform/macos/InFront.hpp"
#import "platform/macos/Strings.hpp"

/// Closes on Escape, though its close button is hidden.
@interface HostingPanel : NSPanel
@end

@implementation HostingPanel

- (void)cancelOperation:(id)sender {
    (void)sender;
    [self close];
}

@end

/// Tells the delegate of the program's panel that the panel closes, however that came about.
@interface PanelDelegate : NSObject <NSWindowDelegate> {
    const platform::NSPanel* _model;
}
- (instancetype)initWithModel:(const platform::NSPanel&)model;
@end

@implementation PanelDelegate

- (instancetype)initWithModel:(const platform::NSPanel&)model {
    if ((self = [super init])) {
        _model = &model;
    }
    return self;
}

- (void)windowWillClose:(NSNotification*)notification {
    (void)notification;
    if (_model->delegate) {
        _model->delegate->windowWillClose();
    }
}

@end

namespace macos {
namespace {

/// What the program added to the style that its panels begin with; AppKit's begin with a style of their own.
NSWindowStyleMask addedTo(platform::NSPanel::StyleMask mask) {
    return static_cast<NSWindowStyleMask>(mask & ~platform::NSPanel{}.styleMask);
}

} // namespace

Panel::Panel(platform::NSPanel& model, const platform::View& content)
    : _model{model}
    , _panel{[[HostingPanel alloc] init]}
    , _contentView{[[HostingView alloc] initWithRootView:content]}
    , _delegate{[[PanelDelegate alloc] initWithModel:model]} {
    using ButtonType = platform::NSPanel::ButtonType;
    NSPanel* const panel = _panel.get();
    const NSSize contentSize = [_contentView.get() frame].size;
    [panel setContentView:_contentView.get()];
    [panel setDelegate:_delegate.get()];
    [panel setTitle:toCocoa(model.title)];
    [panel setStyleMask:[panel styleMask] | addedTo(model.styleMask)];
    for (const auto& [type, button] : {std::pair{ButtonType::Close, NSWindowCloseButton},
                                       std::pair{ButtonType::Miniaturize, NSWindowMiniaturizeButton},
                                       std::pair{ButtonType::Zoom, NSWindowZoomButton}}) {
        const platform::NSWindowButton* const modelButton = model.standardWindowButton(type);
        [[panel standardWindowButton:button] setHidden:modelButton && modelButton->isHidden];
    }
    [panel setPreventsApplicationTerminationWhenModal:model.preventsApplicationTerminationWhenModal];
    [panel setMovableByWindowBackground:model.isMovableByWindowBackground];
    [_contentView.get() setHidden:YES];
    [panel setTitleVisibility:static_cast<NSWindowTitleVisibility>(model.titleVisibility)];
    [panel setTitlebarAppearsTransparent:model.titlebarAppearsTransparent];
    [panel setHidesOnDeactivate:NO];           // the modal session would go on without a window
    keepInFront(panel, NSFloatingWindowLevel); // below the alert that a panel may run
    [panel setContentSize:contentSize]; // last, since how the panel is framed decides what is left for its content
}

Panel::~Panel() {
    [_panel.get() setDelegate:nil];
    [_panel.get() close];
    [_contentView.get() forgetRootView]; // AppKit may hold the controls a little longer than this lives
}

void Panel::center() { [_panel.get() center]; }

void Panel::runModal() {
    [_contentView.get() setHidden:NO];
    [_panel.get() makeFirstResponder:[_contentView.get() firstFocusable]];
    [_panel.get() orderFrontRegardless]; // the program need not be the active one
    [NSApp runModalForWindow:_panel.get()];
    [_panel.get() makeFirstResponder:nil]; // ends the editing, so that what was typed is not lost
    [_contentView.get() setHidden:YES];
}

void Panel::close() { [_panel.get() close]; }

} // namespace macos
