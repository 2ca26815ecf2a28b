#pragma once

// A menu on screen. It is made once from the program's menu and then follows the check marks of its entries; what
// can be picked is asked of the program's menu each time the menu opens.

#include "platform/NSMenu.hpp"

#import <AppKit/AppKit.h>

#include <memory>

/// The target of a menu's entries and the menu's delegate; owns the menu.
@interface MenuTarget : NSObject <NSMenuDelegate> {
    std::shared_ptr<platform::NSMenu> _model;
    NSMenu* _menu;
}

- (instancetype)initWithModel:(std::shared_ptr<platform::NSMenu>)model;

/// The menu on screen.
- (NSMenu*)menu;

/// Brings the check marks up to date.
- (void)update;

/// Runs the action of the entry that the user picked.
- (void)performItem:(NSMenuItem*)sender;

@end
