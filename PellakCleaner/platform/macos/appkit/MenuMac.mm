#include "platform/macos/appkit/MenuMac.h"

#include <utility>

#include "platform/macos/Bridging.h"

@implementation PellakMenuTarget {
  std::function<void(pellak::MenuAction)> scelta_;
}

- (instancetype)initWithChoice:(std::function<void(pellak::MenuAction)>)scelta {
  self = [super init];
  if (self != nil) scelta_ = std::move(scelta);
  return self;
}

- (void)choose:(NSMenuItem*)item {
  scelta_(static_cast<pellak::MenuAction>(item.tag));
}

@end

namespace pellak::native {
namespace {

NSMenuItem* itemOf(const MenuEntry& voce, PellakMenuTarget* target) {
  if (voce.titolo.empty() && voce.sotto.empty()) return [NSMenuItem separatorItem];
  NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:shownText(voce.titolo)
                                                action:@selector(choose:)
                                         keyEquivalent:shownText(voce.tasto)];
  item.target = target;
  item.tag = static_cast<NSInteger>(voce.azione);
  item.enabled = voce.azione != MenuAction::none || !voce.sotto.empty();
  item.state = voce.spunta ? NSControlStateValueOn : NSControlStateValueOff;
  if (voce.sotto.empty()) return item;
  NSMenu* below = [[NSMenu alloc] initWithTitle:item.title];
  below.autoenablesItems = NO;
  for (NSMenuItem* one in menuItems(voce.sotto, target)) [below addItem:one];
  item.submenu = below;
  return item;
}

}  // namespace

NSArray<NSMenuItem*>* menuItems(const std::vector<MenuEntry>& voci, PellakMenuTarget* target) {
  NSMutableArray<NSMenuItem*>* items = [NSMutableArray array];
  for (const MenuEntry& voce : voci) [items addObject:itemOf(voce, target)];
  return items;
}

}  // namespace pellak::native
