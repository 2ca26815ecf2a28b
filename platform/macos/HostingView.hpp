#pragma once

// Draws a tree of declarative views with AppKit's controls. Everything is laid out once, at its ideal size; what
// the user does goes to the operations of the tree's nodes.

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

/// Draws `rootView`, which must live until it is forgotten.
- (instancetype)initWithRootView:(const platform::View&)rootView;

/// The control that the keyboard belongs to at first; nil if the tree has none that takes it.
- (NSView*)firstFocusable;

/// Takes all controls away, which do nothing any more, whoever still holds them; the root view is not touched
/// again.
- (void)forgetRootView;

@end
