#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "scanners/walker/WalkCore.h"
#include "scanners/walker/Walker.h"

namespace pellak::walker {

/// The folders of measured trees and the bytes below each, some 40 bytes a folder. Never changes;
/// any thread.
class FolderSizes {
 public:
  /// Bytes by name; the names live as long as the object.
  using ByName = std::unordered_map<std::string_view, std::int64_t>;

  /// The folders directly in `percorso`, which is a measured root or a folder below one, as far
  /// as they were noted. Empty when `percorso` was not.
  ByName in(std::string_view percorso) const;

  /// How many folders it knows.
  std::size_t size() const { return folders_.size(); }

 private:
  friend class FolderNotes;

  struct Folder {
    std::uint32_t firstChild = 0;  ///< children lie one after another
    std::uint32_t children = 0;
    std::uint32_t nameAt = 0;
    std::uint32_t nameLength = 0;
    std::int64_t bytes = 0;
  };

  std::string_view nameOf(const Folder& folder) const;
  std::span<const Folder> childrenOf(const Folder& folder) const;

  std::vector<Folder> folders_;  ///< the roots first, named by their paths
  std::size_t roots_ = 0;
  std::string names_;
};

/// Takes down the folders that one measure comes by. The walk's workers write at the same time,
/// each in a part of its own.
class FolderNotes {
 public:
  /// At most `most` folders below the roots are noted; what lies in others counts for the nearest
  /// noted one above.
  explicit FolderNotes(std::size_t most) : most_(most) {}

  /// The mark of a folder that `worker` found in another one. The roots are marked 0, 1, 2, …
  FolderMark folder(std::size_t worker, FolderMark parent, std::string_view name);

  /// `bytes` lie in the folder itself.
  void add(std::size_t worker, FolderMark folder, std::int64_t bytes);

  /// What was noted of `percorsi`, once the whole walk is over. Empties the notes.
  FolderSizes finish(std::span<const std::string> percorsi);

 private:
  struct Found {
    FolderMark parent;
    std::uint32_t nameAt;
    std::uint32_t nameLength;
  };
  struct Share {
    FolderMark folder;
    std::int64_t bytes;
  };
  struct alignas(64) Part {
    std::vector<Found> folders;
    std::string names;
    std::vector<Share> shares;
  };
  struct Raw;

  Raw collect(std::span<const std::string> percorsi);

  const std::size_t most_;
  std::atomic<std::size_t> noted_{0};
  std::array<Part, kMaxListings> parts_;
};

}  // namespace pellak::walker
