#import "platform/macos/MainMenu.hpp"

namespace macos {
namespace {

void add(NSMenu* menu, NSString* title, SEL action, NSString* key) {
    [menu addItemWithTitle:title action:action keyEquivalent:key];
}

NSMenu* makeEditMenu() {
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:@"Edit"] autorelease];
    // sent to the control that has the keyboard, and by it to its editor
    add(menu, @"Undo", @selector(undo:), @"z");
    add(menu, @"Redo", @selector(redo:), @"Z");
    [menu addItem:[NSMenuItem separatorItem]];
    add(menu, @"Cut", @selector(cut:), @"x");
    add(menu, @"Copy", @selector(copy:), @"c");
    add(menu, @"Paste", @selector(paste:), @"v");
    add(menu, @"Select All", @selector(selectAll:), @"a");
    return menu;
}

void add(NSMenu* menu, NSMenu* submenu) {
    NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:[submenu title] action:nullptr
                                                  keyEquivalent:@""] autorelease];
    [menu addItem:item];
    [menu setSubmenu:submenu forItem:item];
}

} // namespace

NSMenu* makeMainMenu() {
    NSMenu* const menu = [[[NSMenu alloc] initWithTitle:@""] autorelease];
    add(menu, [[[NSMenu alloc] initWithTitle:@""] autorelease]); // the first belongs to the application
    add(menu, makeEditMenu());
    return menu;
}

} // namespace macos
