#include "platform/macos/TrashCanMac.h"

#import <Foundation/Foundation.h>
#include <cerrno>
#include <cstdio>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/macos/Bridging.h"
#include "platform/posix/ErrnoError.h"

namespace pellak::native {
namespace {

/// The file manager's numbers and the POSIX ones below them in our kinds.
Error errorOf(NSError* errore) {
  NSError* sotto = errore.userInfo[NSUnderlyingErrorKey];
  const std::string testo = bytesOf(errore.localizedDescription);
  const bool cocoa = [errore.domain isEqualToString:NSCocoaErrorDomain];
  if (cocoa && (errore.code == 513 || errore.code == 257)) return {ErrorKind::denied, 0, testo};
  if (cocoa && errore.code == 4) return {ErrorKind::missing, 0, testo};
  if (cocoa && errore.code == 516) return {ErrorKind::exists, 0, testo};
  for (NSError* uno : {errore, sotto}) {
    if (uno != nil && [uno.domain isEqualToString:NSPOSIXErrorDomain]) {
      Error posix = posix::errnoError(static_cast<int>(uno.code));
      posix.text = testo;
      return posix;
    }
  }
  return {ErrorKind::failed, 0, testo};
}

class BatchMac final : public TrashBatch {
 public:
  Result<TrashPlan> plan(std::string_view percorso) override {
    TrashPlan piano;
    piano.percorso = percorso;
    struct stat info {};
    if (::lstat(piano.percorso.c_str(), &info) != 0) return posix::errnoError(errno);
    piano.dev = static_cast<std::uint64_t>(info.st_dev);
    piano.ino = info.st_ino;
    return piano;
  }

  void announce(std::span<const TrashPlan* const> /*piani*/) override {}

  Result<std::string> move(const TrashPlan& piano) override {
    @autoreleasepool {
      struct stat info {};
      if (::lstat(piano.percorso.c_str(), &info) != 0) return posix::errnoError(errno);
      if (info.st_ino != piano.ino) return posix::errnoError(EINVAL);
      NSURL* url = fileUrlOf(piano.percorso);
      if (url == nil) return posix::errnoError(EINVAL);
      NSURL* dove = nil;
      NSError* errore = nil;
      if (![NSFileManager.defaultManager trashItemAtURL:url resultingItemURL:&dove error:&errore]) {
        return errorOf(errore);
      }
      return pathOf(dove);
    }
  }

  /// The system gives no place in advance: the item is looked for by its number.
  std::string locate(const TrashPlan& piano) override {
    struct stat info {};
    if (!piano.nelCestino.empty()) {
      return ::lstat(piano.nelCestino.c_str(), &info) == 0 ? piano.nelCestino : std::string();
    }
    @autoreleasepool {
      NSURL* sopra = fileUrlOf(piano.percorso).URLByDeletingLastPathComponent;
      NSURL* cestino = [NSFileManager.defaultManager URLForDirectory:NSTrashDirectory
                                                            inDomain:NSUserDomainMask
                                                   appropriateForURL:sopra
                                                              create:NO
                                                               error:nil];
      NSArray<NSURL*>* voci = cestino == nil
                                  ? nil
                                  : [NSFileManager.defaultManager contentsOfDirectoryAtURL:cestino
                                                                includingPropertiesForKeys:nil
                                                                                   options:0
                                                                                     error:nil];
      for (NSURL* voce in voci) {
        const char* percorso = voce.fileSystemRepresentation;
        if (::lstat(percorso, &info) == 0 && info.st_ino == piano.ino) return percorso;
      }
    }
    return {};
  }

  Result<void> putBack(std::string_view nelCestino, std::string_view destinazione) override {
    if (::renamex_np(std::string(nelCestino).c_str(), std::string(destinazione).c_str(),
                     RENAME_EXCL) != 0) {
      return posix::errnoError(errno);
    }
    return {};
  }

  /// The system keeps no record beside the item.
  void abandon(const TrashPlan& /*piano*/) override {}

  Result<void> sync() override {
    ::sync();
    return {};
  }
};

}  // namespace

std::unique_ptr<TrashBatch> TrashCanMac::begin() { return std::make_unique<BatchMac>(); }

bool TrashCanMac::insideTrash(std::string_view percorso) const {
  const std::string intero = std::string(percorso) + "/";
  return intero.find("/.Trash/") != std::string::npos ||
         intero.find("/.Trashes/") != std::string::npos;
}

}  // namespace pellak::native
