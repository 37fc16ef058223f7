#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/EntryType.h"
#include "platform/Result.h"

namespace pellak {

/// One entry of a folder with what scanners ask about it. An attribute that the file system did
/// not return is 0. At most one of the three type flags is true; all are false for sockets,
/// devices and pipes.
struct BulkEntry {
  std::string name;         ///< last path component, bytes, never empty
  bool isDir = false;       ///< folder
  bool isLnk = false;       ///< symbolic link
  bool isReg = false;       ///< regular file
  std::int64_t size = 0;    ///< logical size in bytes, all forks; 0 for folders
  std::int64_t alloc = 0;   ///< bytes taken on disk, all forks; 0 for folders
  double mtime = 0;         ///< modification time, whole seconds since 1970-01-01 UTC
  std::int32_t dev = 0;     ///< device of the volume that holds it
  std::uint64_t ino = 0;    ///< file id
  std::uint32_t flags = 0;  ///< BSD file flags; 0 where the system has none
  std::uint32_t nlink = 0;  ///< hard links; 0 where the listing does not tell
};

/// What the system records about one path. Listings that carry attributes leave `mode`, `uid`,
/// `gid` and `nlink` at 0.
struct EntryAttributes {
  EntryType type = EntryType::unknown;
  std::int64_t size = 0;     ///< logical bytes
  std::int64_t alloc = 0;    ///< bytes taken on disk
  std::int64_t mtime = 0;    ///< seconds since 1970-01-01 UTC
  std::int64_t mtimeNs = 0;  ///< the same with its fraction, in nanoseconds
  std::int64_t ctimeNs = 0;  ///< last change of content or record; 0 where the listing tells none
  std::uint64_t ino = 0;
  std::int32_t dev = 0;
  std::uint32_t flags = 0;
  std::uint32_t mode = 0;  ///< type and permission bits as the system encodes them
  std::uint32_t nlink = 0;
  std::uint32_t uid = 0;
  std::uint32_t gid = 0;
};

/// What of a file's room on disk goes with it.
struct OwnSpace {
  std::int64_t bytes = 0;   ///< that no other file, clone or snapshot holds too
  std::uint32_t nlink = 0;  ///< hard links
};

/// One entry as a listing found it. The name lies in the batch's storage and is followed by a
/// NUL byte; it is neither empty nor "." nor "..".
struct ListedEntry {
  std::string_view name;
  EntryType type = EntryType::unknown;  ///< unknown: ask for the attributes
};

/// The entries of one folder and the memory their names lie in. Kept and cleared by its user so
/// that the next folder finds the memory ready. One thread fills it; then any may read it.
class EntryBatch {
 public:
  static constexpr std::size_t kBlockBytes = std::size_t{256} * 1024;

  std::vector<ListedEntry> entries;
  /// As long as `entries` when the listing itself carried the attributes, otherwise empty.
  std::vector<EntryAttributes> attributes;

  /// At least `least` bytes (no more than a block) for the next call that fills the batch. They
  /// stay put until `clear`.
  std::span<std::byte> room(std::size_t least);

  /// Keeps the first `bytes` of the last `room`.
  void keep(std::size_t bytes) { used_ += bytes; }

  /// Forgets the entries; keeps memory for a small folder.
  void clear();

 private:
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
  std::size_t current_ = 0;  ///< the block that is being filled
  std::size_t used_ = 0;     ///< bytes of it in use
};

/// A folder held open. Names are single components followed by a NUL byte; no symbolic link is
/// followed. `read` belongs to one thread at a time; everything else is for any thread at once.
class DirectoryHandle {
 public:
  virtual ~DirectoryHandle() = default;

  /// Appends every entry to `into` by the system's fastest means. On an error the batch is
  /// worthless. Called once for each handle.
  virtual Result<void> read(EntryBatch& into) = 0;

  /// The names by the ordinary directory stream, "." and ".." left out; the second try when
  /// `read` failed.
  virtual Result<std::vector<std::string>> names() = 0;

  /// One entry's own record. Errors: missing (gone since), denied, failed.
  virtual Result<EntryAttributes> attributes(const char* name) const = 0;

  /// Opens a folder in this one. Errors: missing (gone, or no folder any more), denied, failed.
  virtual Result<std::shared_ptr<DirectoryHandle>> open(const char* name) const = 0;

  /// Whether files of this volume may hold the same room on disk; then only `ownSpace` tells what
  /// is a file's own.
  virtual bool sharesSpace() const { return false; }

  /// Of a regular file. Errors: missing, denied, failed.
  virtual Result<OwnSpace> ownSpace(const char* name) const {
    const auto record = attributes(name);
    if (!record) return record.error();
    return OwnSpace{record->alloc, record->nlink};
  }
};

/// Lists folders and reads one path's record. Paths are bytes, absolute, of any length, even
/// beyond what one system call takes; a final symbolic link is not followed. Any thread.
class DirectoryLister {
 public:
  virtual ~DirectoryLister() = default;

  /// Errors: missing (also when the path is a file or a link), denied, invalid, failed.
  virtual Result<std::shared_ptr<DirectoryHandle>> open(std::string_view percorso) = 0;

  /// Errors: missing, denied, invalid, failed.
  virtual Result<EntryAttributes> attributes(std::string_view percorso) = 0;

  /// The real path of what is there: every symbolic link on the way and at the end followed, no
  /// "." or "..". Errors: missing, denied, invalid, failed (links that go round in a ring).
  virtual Result<std::string> resolve(std::string_view percorso) {
    const Result<EntryAttributes> found = attributes(percorso);
    if (!found) return found.error();
    return std::string(percorso);
  }

  /// Whether a successful `read` without entries means an empty folder. Where it does not, the
  /// names are read too.
  virtual bool emptyIsCertain() const = 0;

  /// How many folders one walk may keep open besides those being listed; at least 1.
  virtual std::size_t descriptorBudget() const = 0;
};

inline std::span<std::byte> EntryBatch::room(std::size_t least) {
  if (blocks_.empty() || kBlockBytes - used_ < least) {
    if (!blocks_.empty()) ++current_;
    if (current_ == blocks_.size()) blocks_.push_back(std::make_unique<std::byte[]>(kBlockBytes));
    used_ = 0;
  }
  return {blocks_[current_].get() + used_, kBlockBytes - used_};
}

inline void EntryBatch::clear() {
  constexpr std::size_t kKept = 2;  // what a small folder takes when each call gets a whole block
  entries.clear();
  attributes.clear();
  if (blocks_.size() > kKept) blocks_.resize(kKept);
  current_ = used_ = 0;
}

}  // namespace pellak
