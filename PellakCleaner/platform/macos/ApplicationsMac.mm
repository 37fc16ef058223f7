#include "platform/macos/ApplicationsMac.h"

#import <AppKit/AppKit.h>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include "platform/macos/Bridging.h"
#include "platform/macos/ProcessesMac.h"

namespace pellak::native {
namespace {

constexpr CGFloat kIconSide = 64;

/// The bundle that a path names or lies in; nil when it is in none.
NSBundle* bundleAround(NSString* path) {
  const NSRange inside = [path rangeOfString:@".app/"];
  if (inside.location != NSNotFound) path = [path substringToIndex:inside.location + 4];
  return [path.pathExtension isEqualToString:@"app"] ? [NSBundle bundleWithPath:path] : nil;
}

NSBundle* bundleNamed(NSString* name) {
  if ([name containsString:@"/"]) return nil;
  NSString* file =
      [name.pathExtension isEqualToString:@"app"] ? name : [name stringByAppendingString:@".app"];
  NSArray<NSString*>* folders = @[
    @"/Applications", @"/System/Applications",
    [NSHomeDirectory() stringByAppendingPathComponent:@"Applications"]
  ];
  for (NSString* folder in folders) {
    NSBundle* bundle = [NSBundle bundleWithPath:[folder stringByAppendingPathComponent:file]];
    if (bundle != nil) return bundle;
  }
  return nil;
}

NSBundle* bundleFor(std::string_view chiave) {
  NSString* key = textOf(chiave);
  if (key.length == 0) return nil;
  if ([key hasPrefix:@"/"]) return bundleAround(key);
  NSURL* url = [NSWorkspace.sharedWorkspace URLForApplicationWithBundleIdentifier:key];
  return url != nil ? [NSBundle bundleWithURL:url] : bundleNamed(key);
}

NSString* shownName(NSBundle* bundle) {
  NSString* name = [NSFileManager.defaultManager displayNameAtPath:bundle.bundlePath];
  return [name.pathExtension isEqualToString:@"app"] ? name.stringByDeletingPathExtension : name;
}

/// The bundle whose own program a file is, not one of its helpers'; nil for any other file.
NSBundle* bundleRunBy(const std::string& executable) {
  constexpr std::string_view kInside = "/Contents/MacOS/";
  const std::size_t inside = executable.rfind(kInside);
  if (inside == std::string::npos) return nil;
  NSURL* place = fileUrlOf(std::string_view(executable).substr(0, inside));
  NSBundle* bundle = place == nil ? nil : [NSBundle bundleWithURL:place];
  const std::string own = bytesOf(bundle.executablePath.lastPathComponent);
  return executable.substr(inside + kInside.size()) == own ? bundle : nil;
}

/// From the kernel's list: the workspace's own is renewed by a run loop, which a command in a
/// terminal has not.
std::vector<pid_t> processesOf(const ApplicationInfo& app) {
  NSString* identifier = app.id.empty() ? nil : textOf(app.id);
  std::vector<pid_t> found;
  for (const ProcessMac& process : ownProcesses()) {
    NSBundle* bundle = bundleRunBy(process.executable);
    if (bundle == nil) continue;
    const bool same = identifier != nil ? [bundle.bundleIdentifier isEqualToString:identifier]
                                        : bytesOf(bundle.bundlePath) == app.path;
    if (same) found.push_back(process.pid);
  }
  return found;
}

}  // namespace

std::optional<ApplicationInfo> ApplicationsMac::find(std::string_view chiave) {
  @autoreleasepool {
    NSBundle* bundle = bundleFor(chiave);
    if (bundle == nil) return std::nullopt;
    return ApplicationInfo{bytesOf(bundle.bundleIdentifier), bytesOf(shownName(bundle)),
                           bytesOf(bundle.bundlePath), bytesOf(bundle.executablePath)};
  }
}

bool ApplicationsMac::running(const ApplicationInfo& app) {
  @autoreleasepool {
    return !processesOf(app).empty();
  }
}

bool ApplicationsMac::quit(const ApplicationInfo& app) {
  @autoreleasepool {
    for (const pid_t pid : processesOf(app)) {
      [[NSRunningApplication runningApplicationWithProcessIdentifier:pid] terminate];
    }
  }
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(5);
  while (running(app)) {
    if (std::chrono::steady_clock::now() > limit) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
  }
  return true;
}

Result<std::string> ApplicationsMac::iconPng(std::string_view chiave) {
  @autoreleasepool {
    NSBundle* bundle = bundleFor(chiave);
    if (bundle == nil) return Error{ErrorKind::missing, 0, "no application"};
    NSImage* icon = [NSWorkspace.sharedWorkspace iconForFile:bundle.bundlePath];
    NSRect place = NSMakeRect(0, 0, kIconSide, kIconSide);
    CGImageRef drawn = [icon CGImageForProposedRect:&place context:nil hints:nil];
    if (drawn == nullptr) return Error{ErrorKind::missing, 0, "no icon"};
    NSBitmapImageRep* bitmap = [[NSBitmapImageRep alloc] initWithCGImage:drawn];
    NSData* png = [bitmap representationUsingType:NSBitmapImageFileTypePNG properties:@{}];
    if (png == nil) return Error{ErrorKind::missing, 0, "no icon"};
    return std::string(static_cast<const char*>(png.bytes), png.length);
  }
}

}  // namespace pellak::native
