#include "platform/macos/appkit/ApplicationMac.h"

@implementation PellakApplication

- (void)terminate:(id)sender {
  if (self.onTerminate != nil) {
    self.onTerminate();
  } else {
    [super terminate:sender];
  }
}

@end

@implementation PellakApplicationDelegate

- (void)applicationDidFinishLaunching:(NSNotification*)notification {
  if (self.onLaunched != nil) self.onLaunched();
}

- (BOOL)applicationShouldTerminateAfterLastWindowClosed:(NSApplication*)application {
  return NO;
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)application hasVisibleWindows:(BOOL)visible {
  if (self.onReopened != nil) self.onReopened();
  return YES;
}

- (void)applicationDidBecomeActive:(NSNotification*)notification {
  if (self.onActivated != nil) self.onActivated();
}

- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application {
  return YES;
}

@end
