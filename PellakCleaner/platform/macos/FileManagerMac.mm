#include "platform/macos/FileManagerMac.h"

#import <AppKit/AppKit.h>

#include "platform/macos/Bridging.h"

namespace pellak::native {

Result<void> FileManagerMac::show(std::span<const std::string> percorsi) {
  @autoreleasepool {
    NSMutableArray<NSURL*>* urls = [NSMutableArray array];
    for (const std::string& percorso : percorsi) {
      NSURL* url = fileUrlOf(percorso);
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
    NSURL* url = fileUrlOf(percorso);
    if (url == nil) return Error{ErrorKind::invalid, 0, "path"};
    if (![NSWorkspace.sharedWorkspace openURL:url]) {
      return Error{ErrorKind::failed, 0, "no application opens it"};
    }
    return {};
  }
}

Result<void> FileManagerMac::openTrash() {
  @autoreleasepool {
    NSURL* url = [NSFileManager.defaultManager URLForDirectory:NSTrashDirectory
                                                      inDomain:NSUserDomainMask
                                             appropriateForURL:nil
                                                        create:NO
                                                         error:nil];
    if (url == nil || ![NSWorkspace.sharedWorkspace openURL:url]) {
      return Error{ErrorKind::failed, 0, "the Trash can't be shown"};
    }
    return {};
  }
}

}  // namespace pellak::native
