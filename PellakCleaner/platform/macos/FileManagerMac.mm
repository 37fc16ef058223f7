#include "platform/macos/FileManagerMac.h"

#import <AppKit/AppKit.h>

namespace pellak::native {
namespace {

/// From bytes, not from text: a name need not be valid Unicode.
NSURL* urlOf(std::string_view percorso) {
  const auto* bytes = reinterpret_cast<const UInt8*>(percorso.data());
  return CFBridgingRelease(CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, bytes, static_cast<CFIndex>(percorso.size()), false));
}

}  // namespace

Result<void> FileManagerMac::show(std::span<const std::string> percorsi) {
  @autoreleasepool {
    NSMutableArray<NSURL*>* urls = [NSMutableArray array];
    for (const std::string& percorso : percorsi) {
      NSURL* url = urlOf(percorso);
      if (url == nil) return Error{ErrorKind::invalid, 0, "path"};
      [urls addObject:url];
    }
    if (urls.count == 0) return Error{ErrorKind::invalid, 0, "path"};
    [NSWorkspace.sharedWorkspace activateFileViewerSelectingURLs:urls];
    return {};
  }
}

Result<void> FileManagerMac::open(std::string_view percorso) {
  @autoreleasepool {
    NSURL* url = urlOf(percorso);
    if (url == nil) return Error{ErrorKind::invalid, 0, "path"};
    if (![NSWorkspace.sharedWorkspace openURL:url]) {
      return Error{ErrorKind::failed, 0, "no application opens it"};
    }
    return {};
  }
}

}  // namespace pellak::native
