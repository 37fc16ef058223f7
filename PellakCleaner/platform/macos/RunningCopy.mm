#include "platform/macos/RunningCopy.h"

#import <AppKit/AppKit.h>
#include <memory>

namespace pellak::native {
namespace {

constexpr int64_t kPatience = 5 * static_cast<int64_t>(NSEC_PER_SEC);

/// nil when there is no other one.
NSRunningApplication* otherCopy() {
  NSString* identifier = NSBundle.mainBundle.bundleIdentifier;
  if (identifier == nil) return nil;
  const pid_t own = NSProcessInfo.processInfo.processIdentifier;
  for (NSRunningApplication* one in
       [NSRunningApplication runningApplicationsWithBundleIdentifier:identifier]) {
    // Commands in a terminal are copies too, but have no window to show.
    const bool shows = one.activationPolicy != NSApplicationActivationPolicyProhibited;
    if (one.processIdentifier != own && shows && !one.terminated) return one;
  }
  return nil;
}

}  // namespace

bool showRunningCopy() {
  NSRunningApplication* other = otherCopy();
  if (other.bundleURL == nil) return false;
  // Opening an application that runs asks it to show itself.
  NSWorkspaceOpenConfiguration* plan = [NSWorkspaceOpenConfiguration configuration];
  const auto opened = std::make_shared<bool>(false);
  dispatch_semaphore_t answered = dispatch_semaphore_create(0);
  [NSWorkspace.sharedWorkspace
      openApplicationAtURL:other.bundleURL
             configuration:plan
         completionHandler:^(NSRunningApplication* application, NSError* /*error*/) {
           *opened = application != nil;
           dispatch_semaphore_signal(answered);
         }];
  const bool inTime =
      dispatch_semaphore_wait(answered, dispatch_time(DISPATCH_TIME_NOW, kPatience)) == 0;
  return inTime && *opened;
}

}  // namespace pellak::native
