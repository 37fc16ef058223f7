#include "platform/macos/RunningCopy.h"

#import <AppKit/AppKit.h>
#include <memory>

#include "platform/macos/Bridging.h"

namespace pellak::native {
namespace {

constexpr int64_t kPatience = 5 * static_cast<int64_t>(NSEC_PER_SEC);

/// nil when there is no other one.
NSRunningApplication* otherCopy(const std::string& bundle) {
  NSURL* place = bundle.empty() ? nil : fileUrlOf(bundle);
  NSString* identifier = place == nil ? nil : [NSBundle bundleWithURL:place].bundleIdentifier;
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

bool showRunningCopy(const std::string& bundle) {
  // Kept: the other copy may end meanwhile, and would then have none.
  NSURL* place = otherCopy(bundle).bundleURL;
  if (place == nil) return false;
  // Opening an application that runs asks it to show itself.
  NSWorkspaceOpenConfiguration* plan = [NSWorkspaceOpenConfiguration configuration];
  const auto opened = std::make_shared<bool>(false);
  dispatch_semaphore_t answered = dispatch_semaphore_create(0);
  [NSWorkspace.sharedWorkspace
      openApplicationAtURL:place
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
