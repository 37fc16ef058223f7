#pragma once

#import <AppKit/AppKit.h>
#include <functional>
#include <vector>

#include "platform/DesktopHost.h"

// For .mm files only.

/// What the items of our menus call: menus don't keep their items' targets.
@interface PellakMenuTarget : NSObject

- (instancetype)initWithChoice:(std::function<void(pellak::MenuAction)>)scelta;
- (void)choose:(NSMenuItem*)item;

@end

namespace pellak::native {

/// Items for these entries, which call `target`. A capital letter as the key stands for the key
/// with Shift, as AppKit has it.
NSArray<NSMenuItem*>* menuItems(const std::vector<MenuEntry>& voci, PellakMenuTarget* target);

}  // namespace pellak::native
