#include "platform/macos/appkit/WindowMac.h"

#import <AppKit/AppKit.h>

#include "platform/macos/Bridging.h"

@interface PellakWindowDelegate : NSObject <NSWindowDelegate>

@property(nonatomic, assign) BOOL nasconde;
@property(nonatomic, copy) void (^onClose)(void);

@end

@implementation PellakWindowDelegate

- (BOOL)windowShouldClose:(NSWindow*)window {
  if (self.nasconde) return YES;
  if (self.onClose != nil) self.onClose();
  [window miniaturize:nil];
  return NO;
}

- (void)windowWillClose:(NSNotification*)notification {
  if (self.onClose != nil) self.onClose();
}

@end

namespace pellak::native {
namespace {

NSWindow* windowOf(const WindowPlan& piano) {
  const NSWindowStyleMask style = NSWindowStyleMaskTitled | NSWindowStyleMaskClosable |
                                  NSWindowStyleMaskMiniaturizable | NSWindowStyleMaskResizable;
  NSWindow* window =
      [[NSWindow alloc] initWithContentRect:NSMakeRect(0, 0, piano.larghezza, piano.altezza)
                                  styleMask:style
                                    backing:NSBackingStoreBuffered
                                      defer:NO];
  window.title = shownText(piano.titolo);
  window.releasedWhenClosed = NO;
  window.restorable = NO;
  window.tabbingMode = NSWindowTabbingModeDisallowed;
  window.minSize = NSMakeSize(piano.minLarghezza, piano.minAltezza);
  [window center];
  return window;
}

}  // namespace

struct WindowMac::Parts {
  NSWindow* window = nil;
  PellakWindowDelegate* delegate = [[PellakWindowDelegate alloc] init];
  std::unique_ptr<WebViewMac> page;
};

WindowMac::WindowMac(DesktopEvents& eventi) : eventi_(eventi), parts_(std::make_unique<Parts>()) {
  parts_->delegate.nasconde = YES;
  DesktopEvents* told = &eventi_;
  parts_->delegate.onClose = ^{
    told->windowWillClose();
  };
}

WindowMac::~WindowMac() {
  parts_->delegate.onClose = nil;
  parts_->window.delegate = nil;
  [parts_->window orderOut:nil];
  parts_->window.contentView = nil;
}

void WindowMac::open(const WindowPlan& piano, const std::vector<std::string>& canali) {
  if (parts_->window != nil) return;
  parts_->window = windowOf(piano);
  parts_->window.delegate = parts_->delegate;
  parts_->page = std::make_unique<WebViewMac>(eventi_, canali);
  parts_->window.contentView = parts_->page->view();
  parts_->window.initialFirstResponder = parts_->page->view();
  present();
}

void WindowMac::present() {
  if (parts_->window == nil) return;
  if (parts_->window.miniaturized) [parts_->window deminiaturize:nil];
  [parts_->window makeKeyAndOrderFront:nil];
  [NSApp activateIgnoringOtherApps:YES];
}

void WindowMac::close() {
  if (visible()) [parts_->window performClose:nil];
}

void WindowMac::setCloseHides(bool nasconde) { parts_->delegate.nasconde = nasconde ? YES : NO; }

bool WindowMac::visible() const { return parts_->window.visible && !parts_->window.miniaturized; }

WebViewMac* WindowMac::page() const { return parts_->page.get(); }

}  // namespace pellak::native
