#include "platform/macos/TrashCanMac.h"

#import <Foundation/Foundation.h>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <set>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

#include "platform/macos/Bridging.h"
#include "platform/macos/FolderAboveMac.h"
#include "platform/macos/MountsMac.h"
#include "platform/posix/EntryTypes.h"
#include "platform/posix/ErrnoError.h"
#include "platform/posix/HomeFolder.h"
#include "platform/posix/PathParts.h"
#include "platform/posix/RecordTimes.h"
#include "platform/posix/SyncToDisk.h"

namespace pellak::native {
namespace {

using posix::errnoError;

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
      Error posix = errnoError(static_cast<int>(uno.code));
      posix.text = testo;
      return posix;
    }
  }
  return {ErrorKind::failed, 0, testo};
}

/// Success when nothing is mounted below a folder.
Result<void> nothingBelow(const std::string& cartella) {
  const auto montati = MountsMac().list();
  if (!montati) {
    return Error{ErrorKind::failed, montati.error().code,
                 "non so quali dischi sono montati: cartella non spostata"};
  }
  const Mount* sotto = mountBelow(*montati, cartella);
  if (sotto != nullptr) return Error{ErrorKind::mounted, EBUSY, sotto->path};
  return {};
}

Result<struct stat> statItem(const FolderAbove& voce) {
  struct stat info {};
  if (::fstatat(voce.folder.get(), voce.name.c_str(), &info, AT_SYMLINK_NOFOLLOW) != 0) {
    return errnoError(errno);
  }
  return info;
}

bool isPlanned(const struct stat& info, const TrashPlan& piano) {
  return info.st_ino == piano.ino && static_cast<std::uint64_t>(info.st_dev) == piano.dev;
}

/// The Trash folder of the volume that holds a folder.
Result<std::string> trashOf(const std::string& cartella, bool make) {
  NSError* errore = nil;
  NSURL* cestino = [NSFileManager.defaultManager URLForDirectory:NSTrashDirectory
                                                        inDomain:NSUserDomainMask
                                               appropriateForURL:fileUrlOf(cartella)
                                                          create:make ? YES : NO
                                                           error:&errore];
  if (cestino == nil) return errorOf(errore);
  return pathOf(cestino);
}

/// The one the program was told of.
std::string home() {
  const char* named = std::getenv("HOME");
  return named != nullptr && *named == '/' ? std::string(named) : posix::homeFolder();
}

std::string withoutLinks(const std::string& percorso) {
  char* vero = ::realpath(percorso.c_str(), nullptr);
  std::string testo = vero == nullptr ? percorso : std::string(vero);
  std::free(vero);
  return testo;
}

class BatchMac final : public TrashBatch {
 public:
  Result<TrashPlan> plan(std::string_view percorso) override {
    @autoreleasepool {
      const auto sopra = openFolderAbove(percorso, home_);
      if (!sopra) return sopra.error();
      const auto info = statItem(*sopra);
      if (!info) return info.error();
      struct stat cartella {};
      if (::fstat(sopra->folder.get(), &cartella) != 0) return errnoError(errno);
      if (cartella.st_dev != info->st_dev) return errnoError(EBUSY);
      TrashPlan piano;
      piano.percorso = percorso;
      piano.dev = static_cast<std::uint64_t>(info->st_dev);
      piano.ino = info->st_ino;
      piano.type = posix::typeOf(info->st_mode);
      piano.mtimeNs = posix::timesOf(*info).modified;
      piano.lunghezza = info->st_size;
      if (auto stesso = sameVolume(piano); !stesso) return stesso.error();
      if (auto solo = S_ISDIR(info->st_mode) ? nothingBelow(piano.percorso) : Result<void>();
          !solo) {
        return solo.error();
      }
      return piano;
    }
  }

  void announce(std::span<const TrashPlan* const> /*piani*/) override {}

  Result<std::string> move(const TrashPlan& piano) override {
    @autoreleasepool {
      const auto sopra = openFolderAbove(piano.percorso, home_);
      if (!sopra) return sopra.error();
      const auto info = statItem(*sopra);
      if (!info) return info.error();
      if (!isPlanned(*info, piano)) return errnoError(EINVAL);
      if (auto solo = S_ISDIR(info->st_mode) ? nothingBelow(piano.percorso) : Result<void>();
          !solo) {
        return solo.error();
      }
      NSURL* url = fileUrlOf(piano.percorso);
      if (url == nil) return errnoError(EINVAL);
      NSURL* dove = nil;
      NSError* errore = nil;
      if (![NSFileManager.defaultManager trashItemAtURL:url resultingItemURL:&dove error:&errore]) {
        return errorOf(errore);
      }
      // From here on these two folders have to reach the disk.
      std::string nelCestino = pathOf(dove);
      struct stat arrivata {};
      const bool altra = ::lstat(nelCestino.c_str(), &arrivata) == 0 && !isPlanned(arrivata, piano);
      // Something else was put at the path between the look and the move: it goes back.
      if (altra && exchange(nelCestino, piano.percorso, false)) return errnoError(EINVAL);
      toSync_.insert(posix::folderOf(nelCestino));
      toSync_.insert(posix::folderOf(piano.percorso));
      return nelCestino;
    }
  }

  /// The system gives no place in advance: then the item is looked for by its numbers.
  std::string locate(const TrashPlan& piano) override {
    struct stat info {};
    if (!piano.nelCestino.empty()) {
      const bool there =
          inOwnTrash(piano.nelCestino) && ::lstat(piano.nelCestino.c_str(), &info) == 0;
      return there && (piano.ino == 0 || isPlanned(info, piano)) ? piano.nelCestino : std::string();
    }
    @autoreleasepool {
      const auto voci = itemsOfTrash(piano);
      if (!voci) return {};
      NSArray<NSURL*>* elenco = voci.value();
      for (NSURL* voce in elenco) {
        std::string percorso = pathOf(voce);
        if (::lstat(percorso.c_str(), &info) == 0 && isPlanned(info, piano)) return percorso;
      }
    }
    return {};
  }

  Result<void> searchable(const TrashPlan& piano) override {
    if (!piano.nelCestino.empty()) return {};
    @autoreleasepool {
      const auto voci = itemsOfTrash(piano);
      return voci ? Result<void>() : voci.error();
    }
  }

  Result<void> putBack(std::string_view nelCestino, std::string_view destinazione) override {
    return exchange(nelCestino, destinazione, true);
  }

  Result<void> undoPutBack(std::string_view nelCestino, std::string_view destinazione) override {
    return exchange(destinazione, nelCestino, false);
  }

  /// The system keeps no record beside the item.
  void abandon(const TrashPlan& /*piano*/) override {}

  Result<void> sync() override {
    Result<void> esito;
    for (const std::string& cartella : std::exchange(toSync_, {})) {
      const posix::Descriptor aperta(::open(cartella.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
      // A folder that went meanwhile holds nothing that could be lost.
      if (!aperta && errno == ENOENT) continue;
      if (!aperta || posix::syncToDisk(aperta.get()) != 0) esito = errnoError(errno);
    }
    return esito;
  }

 private:
  /// Whether an item lies in a Trash of this user: what a record names is not trusted.
  bool inOwnTrash(const std::string& percorso) const {
    const std::string cartella = posix::folderOf(percorso);
    return cartella == home_ + "/.Trash" || cartella == realHome_ + "/.Trash" ||
           (cartella.starts_with("/Volumes/") &&
            cartella.ends_with("/.Trashes/" + std::to_string(::getuid())));
  }

  /// The Trash of a planned item's volume, listed. Without the permission to, the system refuses.
  static Result<NSArray<NSURL*>*> itemsOfTrash(const TrashPlan& piano) {
    const auto cestino = trashOf(posix::folderOf(piano.percorso), false);
    if (!cestino) return cestino.error();
    NSError* errore = nil;
    NSArray<NSURL*>* voci =
        [NSFileManager.defaultManager contentsOfDirectoryAtURL:fileUrlOf(*cestino)
                                    includingPropertiesForKeys:nil
                                                       options:0
                                                         error:&errore];
    if (voci == nil) return errorOf(errore);
    return voci;
  }

  /// Success when the system's Trash for an item is on the item's own volume, as far as it tells.
  Result<void> sameVolume(const TrashPlan& piano) {
    if (withTrash_.contains(piano.dev)) return {};
    const auto cestino = trashOf(posix::folderOf(piano.percorso), true);
    if (!cestino) return cestino.error();
    struct stat info {};
    const bool other = ::lstat(cestino->c_str(), &info) == 0 &&
                       static_cast<std::uint64_t>(info.st_dev) != piano.dev;
    if (other) return otherVolume();
    withTrash_.insert(piano.dev);
    return {};
  }

  Result<void> exchange(std::string_view da, std::string_view a, bool make) {
    const auto qui = openFolderAbove(da, home_);
    if (!qui) return qui.error();
    const auto altrove = openFolderAbove(a, home_, make);
    if (!altrove) return altrove.error();
    if (auto mosso = renameExclusively(*qui, *altrove); !mosso) return mosso;
    toSync_.insert(posix::folderOf(da));
    toSync_.insert(posix::folderOf(a));
    return {};
  }

  const std::string home_ = home();
  const std::string realHome_ = withoutLinks(home_);
  std::set<std::uint64_t> withTrash_;  ///< volumes whose Trash is on them
  std::set<std::string> toSync_;       ///< folders that changed since the last `sync`
};

}  // namespace

std::unique_ptr<TrashBatch> TrashCanMac::begin() { return std::make_unique<BatchMac>(); }

bool TrashCanMac::insideTrash(std::string_view percorso) const {
  const std::string intero = std::string(percorso) + "/";
  return intero.find("/.Trash/") != std::string::npos ||
         intero.find("/.Trashes/") != std::string::npos ||
         (home() + "/.Trash/").starts_with(intero);
}

}  // namespace pellak::native
