#include "platform/macos/appkit/MainMenuMac.h"

#import <AppKit/AppKit.h>

#include "platform/macos/appkit/MenuMac.h"

namespace pellak::native {
namespace {

/// An item whose action goes to whatever has the keyboard.
NSMenuItem* standard(NSString* title, SEL action, NSString* key) {
  return [[NSMenuItem alloc] initWithTitle:title action:action keyEquivalent:key];
}

NSMenu* addMenu(NSMenu* bar, NSString* title, NSArray<NSMenuItem*>* items) {
  NSMenu* menu = [[NSMenu alloc] initWithTitle:title];
  for (NSMenuItem* item in items) [menu addItem:item];
  NSMenuItem* place = [[NSMenuItem alloc] initWithTitle:title action:nullptr keyEquivalent:@""];
  place.submenu = menu;
  [bar addItem:place];
  return menu;
}

NSArray<NSMenuItem*>* hidingItems() {
  NSMenuItem* others = standard(@"Nascondi altre", @selector(hideOtherApplications:), @"h");
  others.keyEquivalentModifierMask = NSEventModifierFlagCommand | NSEventModifierFlagOption;
  return @[
    standard(@"Nascondi Pellak Cleaner", @selector(hide:), @"h"), others,
    standard(@"Mostra tutte", @selector(unhideAllApplications:), @""), [NSMenuItem separatorItem]
  ];
}

NSArray<NSMenuItem*>* editItems() {
  return @[
    standard(@"Annulla", @selector(undo:), @"z"), standard(@"Ripristina", @selector(redo:), @"Z"),
    [NSMenuItem separatorItem], standard(@"Taglia", @selector(cut:), @"x"),
    standard(@"Copia", @selector(copy:), @"c"), standard(@"Incolla", @selector(paste:), @"v"),
    standard(@"Seleziona tutto", @selector(selectAll:), @"a")
  ];
}

NSArray<NSMenuItem*>* windowItems() {
  return @[
    standard(@"Chiudi", @selector(performClose:), @"w"),
    standard(@"Contrai", @selector(performMiniaturize:), @"m"),
    standard(@"Ridimensiona", @selector(performZoom:), @""), [NSMenuItem separatorItem],
    standard(@"Porta tutto in primo piano", @selector(arrangeInFront:), @"")
  ];
}

}  // namespace

struct MainMenuMac::Parts {
  PellakMenuTarget* target;
};

MainMenuMac::MainMenuMac(DesktopEvents& eventi) : parts_(std::make_unique<Parts>()) {
  DesktopEvents* told = &eventi;
  parts_->target = [[PellakMenuTarget alloc]
      initWithChoice:[told](MenuAction azione) { told->menuChosen(azione); }];
}

MainMenuMac::~MainMenuMac() { NSApp.mainMenu = nil; }

void MainMenuMac::set(const std::vector<MenuEntry>& voci) {
  NSMutableArray<NSMenuItem*>* own = [menuItems(voci, parts_->target) mutableCopy];
  NSUInteger place = own.count > 0 ? own.count - 1 : 0;
  for (NSMenuItem* item in hidingItems()) [own insertObject:item atIndex:place++];

  NSMenu* bar = [[NSMenu alloc] initWithTitle:@""];
  addMenu(bar, @"", own);
  addMenu(bar, @"Modifica", editItems());
  NSMenu* windows = addMenu(bar, @"Finestra", windowItems());
  NSApp.mainMenu = bar;
  NSApp.windowsMenu = windows;
}

}  // namespace pellak::native
