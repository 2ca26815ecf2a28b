#pragma once

// Shows a tree of declarative views with AppKit's controls. Everything is laid out once, at its ideal size; what
// the user does is passed on to the operations of the tree's nodes.

#include "platform/View.hpp"

#import <AppKit/AppKit.h>

#include <functional>
#include <utility>
#include <vector>

/// As large as its content.
@interface HostingView : NSView <NSTextFieldDelegate> {
    std::vector<std::function<void()>> _actions; // by the tags of the controls
    std::vector<std::pair<NSTextField*, const platform::node::TextField*>> _textFields;
    NSView* _firstFocusable;
}

/// Draws `rootView`, which must outlive this view or be forgotten before it ends.
- (instancetype)initWithRootView:(const platform::View&)rootView;

/// Makes `control` run `action` when the user uses it.
- (void)connect:(NSControl*)control to:(std::function<void()>)action;

/// Keeps the value of `node` equal to what is typed into `field`, and submits it on Return.
- (void)add:(NSTextField*)field for:(const platform::node::TextField&)node;

/// The control that the keyboard belongs to at first: a text field, or any other where full keyboard access is on.
/// Nil if there is none.
- (NSView*)firstFocusable;

/// Takes all controls away and disconnects them, since AppKit may still hold them; the root view is not touched
/// again.
- (void)forgetRootView;

@end
