#include "platform/macos/appkit/StatusItemMac.h"

#import <AppKit/AppKit.h>

#include "platform/macos/Bridging.h"
#include "platform/macos/appkit/MenuMac.h"
#include "platform/macos/appkit/StatRowView.h"

/// Asks for fresh entries before the menu shows: later its items must not be exchanged.
@interface PellakStatusMenuDelegate : NSObject <NSMenuDelegate>

@property(nonatomic, copy) void (^onNeed)(void);

@end

@implementation PellakStatusMenuDelegate

- (void)menuNeedsUpdate:(NSMenu*)menu {
  if (self.onNeed != nil) self.onNeed();
}

@end

namespace pellak::native {
namespace {

constexpr CGFloat kImageSide = 18;
constexpr CGFloat kTitleSize = 11;

/// nil when it can't be read. A template image takes the bar's own colour.
NSImage* templateImage(const std::string& percorso) {
  NSURL* file = fileUrlOf(percorso);
  NSImage* image = file == nil ? nil : [[NSImage alloc] initWithContentsOfURL:file];
  if (!image.valid) return nil;
  image.size = NSMakeSize(kImageSide, kImageSide);
  [image setTemplate:YES];
  return image;
}

NSMenuItem* readingItem(const StatRow& lettura) {
  StatRowView* row = [[StatRowView alloc] initWithRow:lettura];
  NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:row.testo action:nullptr keyEquivalent:@""];
  item.enabled = NO;
  item.view = row;
  return item;
}

}  // namespace

struct StatusItemMac::Parts {
  NSStatusItem* item = nil;
  NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
  PellakStatusMenuDelegate* delegate = [[PellakStatusMenuDelegate alloc] init];
  PellakMenuTarget* target = nil;
  NSImage* image = nil;
  NSString* lettera = @"";
  NSString* titolo = @"";

  void create();
  void show() const;
};

void StatusItemMac::Parts::create() {
  if (item != nil) return;
  item = [NSStatusBar.systemStatusBar statusItemWithLength:NSSquareStatusItemLength];
  item.button.font = [NSFont monospacedDigitSystemFontOfSize:kTitleSize weight:NSFontWeightRegular];
  item.button.toolTip = @"Pellak Cleaner";
  item.button.accessibilityLabel = @"Pellak Cleaner";
  item.menu = menu;
  show();
}

void StatusItemMac::Parts::show() const {
  if (item == nil) return;
  const bool letterOnly = image == nil && titolo.length == 0;
  item.button.image = image;
  item.button.title = letterOnly ? lettera : titolo;
  if (image == nil) {
    item.button.imagePosition = NSNoImage;
  } else {
    item.button.imagePosition = titolo.length == 0 ? NSImageOnly : NSImageLeading;
  }
  item.length = titolo.length == 0 ? NSSquareStatusItemLength : NSVariableStatusItemLength;
}

StatusItemMac::StatusItemMac(DesktopEvents& eventi) : parts_(std::make_unique<Parts>()) {
  DesktopEvents* told = &eventi;
  parts_->target = [[PellakMenuTarget alloc]
      initWithChoice:[told](MenuAction azione) { told->menuChosen(azione); }];
  parts_->delegate.onNeed = ^{
    told->menuWillOpen();
  };
  parts_->menu.autoenablesItems = NO;
  parts_->menu.delegate = parts_->delegate;
}

StatusItemMac::~StatusItemMac() {
  parts_->delegate.onNeed = nil;
  parts_->menu.delegate = nil;
  if (parts_->item != nil) [NSStatusBar.systemStatusBar removeStatusItem:parts_->item];
}

void StatusItemMac::setMenu(const std::vector<StatRow>& letture,
                            const std::vector<MenuEntry>& voci) {
  NSMenu* menu = parts_->menu;
  [menu removeAllItems];
  for (const StatRow& lettura : letture) [menu addItem:readingItem(lettura)];
  if (!letture.empty()) [menu addItem:[NSMenuItem separatorItem]];
  for (NSMenuItem* item in menuItems(voci, parts_->target)) [menu addItem:item];
  parts_->create();
}

void StatusItemMac::setImage(const std::string& percorso, const std::string& lettera) {
  parts_->image = templateImage(percorso);
  parts_->lettera = shownText(lettera);
  parts_->show();
}

void StatusItemMac::setTitle(const std::string& testo) {
  parts_->titolo = shownText(testo);
  parts_->show();
}

}  // namespace pellak::native
