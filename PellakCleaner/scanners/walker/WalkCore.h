#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "scanners/walker/Folder.h"
#include "scanners/walker/Walker.h"

namespace pellak::walker {

/// A client's own number for a folder; it travels with the work on the folder. A root has its
/// index.
using FolderMark = std::uint64_t;

/// A file that the walk came by. Lives for one call.
struct FileSeen {
  std::size_t worker;
  std::size_t root;
  const FolderRef& folder;
  std::string_view name;
};

/// What one kind of walk does with what it comes by. Called by all workers at once; `worker`
/// numbers those that run at the same time, below `kMaxListings`.
class WalkClient {
 public:
  virtual ~WalkClient() = default;

  /// Whether only regular files matter; otherwise everything that is neither folder nor link.
  virtual bool onlyRegular() const = 0;

  /// Whether a root is to be opened as a folder.
  virtual bool entersRoot(std::size_t worker, std::size_t root, const std::string& percorso) = 0;

  /// Whether a folder found on the way is to be entered, by its name.
  virtual bool entersName(std::string_view name) const = 0;

  /// Whether `entersPath` wants to be asked; paths are built only then.
  virtual bool filtersPaths() const = 0;
  virtual bool entersPath(const std::string& percorso) = 0;

  /// The mark of a folder that is going to be entered, found in the one marked `parent`.
  virtual FolderMark mark(std::size_t /*worker*/, FolderMark parent, std::string_view /*name*/) {
    return parent;
  }

  virtual void file(const FileSeen& seen, const EntryAttributes& attributes) = 0;

  /// More pieces of work came up for a root, or one is done. A root begins with one piece; with
  /// as many done as came up everything below it has been seen. A piece lies in one folder.
  virtual void added(std::size_t root, std::size_t pieces) = 0;
  virtual void done(std::size_t worker, std::size_t root, FolderMark folder) = 0;
};

/// Walks one root on the calling thread. Throws `ScanCancelled`.
void walkAlone(const Ambiente& ambiente, const Stop& stop, WalkClient& client,
               std::string_view radice);

/// Walks all roots with up to `kMaxListings` threads. Throws `ScanCancelled`, or the first
/// exception of a client.
void walkTogether(const Ambiente& ambiente, const Stop& stop, WalkClient& client,
                  std::span<const std::string> radici);

}  // namespace pellak::walker
