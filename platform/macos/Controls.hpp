#pragma once

// AppKit's controls as the program's windows show them: each made with its look and its texts, but without an
// action, and autoreleased.

#include "platform/View.hpp"

#import <AppKit/AppKit.h>

#include <string>

/// A piece of text that opens an address when it is clicked.
@interface LinkButton : NSButton
@end

namespace macos {

NSTextField* makeLabel(const std::string& text, platform::Font font);
LinkButton* makeLink(const std::string& text, platform::Font font);
NSImageView* makePicture(const platform::NSImage& image);
NSTextField* makeTextField(const platform::node::TextField& node, platform::Font font);
NSButton* makeToggle(const platform::node::Toggle& node);
NSPopUpButton* makePicker(const platform::node::Picker& node);

/// A button that is as large as its label asks for; the default button is pressed by Return.
NSButton* makePushButton(const platform::node::Button& node, platform::Font font, bool isDefault);

/// What the eye takes for the size of `view`, in points: AppKit's controls have invisible margins.
platform::NSSize visibleSize(NSView* view);

} // namespace macos
