#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/DirectoryLister.h"
#include "scanners/walker/Walker.h"

namespace pellak::walker {

/// Tells, while trees are measured, which of their bytes the disk may not get back when they go:
/// those of files that have another name outside their tree, and those that a file shares with
/// others. The walk's workers count at the same time, each in a part of its own; one measure.
class FreeSpace {
 public:
  explicit FreeSpace(const Ambiente& ambiente) : ambiente_(ambiente) {}

  /// Whether the file's record says it all, so that `file` needs no folder.
  bool plain(std::size_t worker, const EntryAttributes& attributes) const;

  /// A file in the open folder `folder`; none when it could not be held.
  void file(std::size_t worker, std::size_t root, const DirectoryHandle* folder,
            std::string_view name, const EntryAttributes& attributes);

  /// A root that is a file itself.
  void rootFile(std::size_t worker, std::size_t root, const std::string& percorso,
                const EntryAttributes& attributes);

  /// For each root the bytes that may stay taken, once the whole walk is over.
  std::vector<std::int64_t> kept(std::size_t roots) const;

 private:
  /// A file with several names, as seen in one tree.
  struct Link {
    std::size_t root;
    std::uint64_t ino;
    std::int32_t dev;

    friend bool operator==(const Link&, const Link&) = default;
  };
  struct LinkHash {
    std::size_t operator()(const Link& link) const {
      constexpr std::uint64_t kOdd = 0x9e3779b97f4a7c15;
      return static_cast<std::size_t>((link.ino * kOdd + link.root) * kOdd +
                                      static_cast<std::uint32_t>(link.dev));
    }
  };
  struct Names {
    std::uint64_t seen = 0;
    std::uint64_t all = 0;
    std::int64_t bytes = 0;  ///< free once all names are gone
  };
  struct Kept {
    std::size_t root;
    std::int64_t bytes;
  };
  struct alignas(64) Part {
    std::vector<Kept> kept;
    std::unordered_map<Link, Names, LinkHash> links;
    std::int32_t plainDev = 0;  ///< a volume whose files share nothing
    bool plainKnown = false;
    std::string parentPath;  ///< of the last root that was a file
    std::shared_ptr<DirectoryHandle> parent;
  };

  static Result<OwnSpace> ask(Part& part, const DirectoryHandle* folder, std::string_view name,
                              const EntryAttributes& attributes);
  static void count(Part& part, std::size_t root, const OwnSpace& own,
                    const EntryAttributes& attributes);

  const Ambiente& ambiente_;
  std::array<Part, kMaxListings> parts_;
};

}  // namespace pellak::walker
