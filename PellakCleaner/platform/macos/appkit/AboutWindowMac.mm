#include "platform/macos/appkit/AboutWindowMac.h"

#import <AppKit/AppKit.h>

#include "platform/macos/Bridging.h"

/// Opens the support address.
@interface PellakSupportTarget : NSObject

@property(nonatomic, strong) NSURL* indirizzo;

- (void)open:(id)sender;

@end

@implementation PellakSupportTarget

- (void)open:(id)sender {
  [NSWorkspace.sharedWorkspace openURL:self.indirizzo];
}

@end

namespace pellak::native {
namespace {

constexpr CGFloat kLogoSide = 128;
constexpr CGFloat kMargin = 28;
constexpr CGFloat kSpacing = 10;
constexpr CGFloat kNameSize = 20;

/// nil when there is none: then there is no logo.
NSImageView* logoView(const std::string& percorso) {
  NSURL* file = fileUrlOf(percorso);
  NSImage* image = file == nil ? nil : [[NSImage alloc] initWithContentsOfURL:file];
  if (!image.valid) return nil;
  NSImageView* view = [NSImageView imageViewWithImage:image];
  view.imageScaling = NSImageScaleProportionallyUpOrDown;
  [view.widthAnchor constraintEqualToConstant:kLogoSide].active = YES;
  [view.heightAnchor constraintEqualToConstant:kLogoSide].active = YES;
  return view;
}

NSTextField* label(const std::string& testo, NSFont* font, NSColor* colour) {
  NSTextField* field = [NSTextField labelWithString:shownText(testo)];
  field.maximumNumberOfLines = 0;
  field.alignment = NSTextAlignmentCenter;
  field.font = font;
  field.textColor = colour;
  return field;
}

NSStackView* content(const AboutPlan& informazioni, PellakSupportTarget* support) {
  NSFont* plain = [NSFont systemFontOfSize:NSFont.systemFontSize];
  NSMutableArray<NSView*>* views = [NSMutableArray array];
  NSImageView* logo = logoView(informazioni.logo);
  if (logo != nil) [views addObject:logo];
  [views addObject:label(informazioni.nome, [NSFont boldSystemFontOfSize:kNameSize],
                         NSColor.labelColor)];
  [views addObject:label(informazioni.versione, plain, NSColor.secondaryLabelColor)];
  [views addObject:label(informazioni.testo, plain, NSColor.labelColor)];
  if (support.indirizzo != nil) {
    [views addObject:[NSButton buttonWithTitle:@"Supporto" target:support action:@selector(open:)]];
  }
  NSStackView* stack = [NSStackView stackViewWithViews:views];
  stack.orientation = NSUserInterfaceLayoutOrientationVertical;
  stack.alignment = NSLayoutAttributeCenterX;
  stack.spacing = kSpacing;
  stack.edgeInsets = NSEdgeInsetsMake(kMargin, kMargin, kMargin, kMargin);
  return stack;
}

}  // namespace

struct AboutWindowMac::Parts {
  NSWindow* window = nil;
  PellakSupportTarget* support = [[PellakSupportTarget alloc] init];
};

AboutWindowMac::AboutWindowMac() : parts_(std::make_unique<Parts>()) {}

AboutWindowMac::~AboutWindowMac() { [parts_->window orderOut:nil]; }

void AboutWindowMac::show(const AboutPlan& informazioni) {
  if (parts_->window == nil) {
    if (!informazioni.supporto.empty()) {
      parts_->support.indirizzo = [NSURL URLWithString:shownText(informazioni.supporto)];
    }
    NSStackView* views = content(informazioni, parts_->support);
    NSWindow* window =
        [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, 1, 1)
                                    styleMask:NSWindowStyleMaskTitled | NSWindowStyleMaskClosable
                                      backing:NSBackingStoreBuffered
                                        defer:NO];
    window.title = shownText("Informazioni su " + informazioni.nome);
    window.releasedWhenClosed = NO;
    window.restorable = NO;
    window.contentView = views;
    [window setContentSize:views.fittingSize];
    [window center];
    parts_->window = window;
  }
  [parts_->window makeKeyAndOrderFront:nil];
  [NSApp activateIgnoringOtherApps:YES];
}

}  // namespace pellak::native
