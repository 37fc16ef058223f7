#include "scanners/walker/FolderSizes.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace pellak::walker {
namespace {

constexpr unsigned kWorkerShift = 32;
constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

/// Marks below the first worker's are roots.
FolderMark markOf(std::size_t worker, std::size_t index) {
  return (static_cast<FolderMark>(worker + 1) << kWorkerShift) | index;
}

/// What of `percorso` lies below `root`, without the slash between; nothing when it lies elsewhere.
std::optional<std::string_view> below(std::string_view percorso, std::string_view root) {
  if (!percorso.starts_with(root)) return std::nullopt;
  percorso.remove_prefix(root.size());
  if (percorso.empty() || root.ends_with('/')) return percorso;
  if (percorso.front() != '/') return std::nullopt;
  return percorso.substr(1);
}

}  // namespace

std::string_view FolderSizes::nameOf(const Folder& folder) const {
  return std::string_view(names_).substr(folder.nameAt, folder.nameLength);
}

std::span<const FolderSizes::Folder> FolderSizes::childrenOf(const Folder& folder) const {
  return std::span(folders_).subspan(folder.firstChild, folder.children);
}

FolderSizes::ByName FolderSizes::in(std::string_view percorso) const {
  const Folder* place = nullptr;
  std::string_view rest;
  for (std::size_t i = 0; i < roots_ && place == nullptr; ++i) {
    if (const auto inside = below(percorso, nameOf(folders_[i]))) {
      place = &folders_[i];
      rest = *inside;
    }
  }
  while (place != nullptr && !rest.empty()) {
    const std::string_view name = rest.substr(0, rest.find('/'));
    rest.remove_prefix(std::min(rest.size(), name.size() + 1));
    const Folder* next = nullptr;
    for (const Folder& child : childrenOf(*place)) {
      if (nameOf(child) == name) next = &child;
    }
    place = next;
  }
  ByName found;
  if (place == nullptr) return found;
  found.reserve(place->children);
  for (const Folder& child : childrenOf(*place)) found.emplace(nameOf(child), child.bytes);
  return found;
}

FolderMark FolderNotes::folder(std::size_t worker, FolderMark parent, std::string_view name) {
  Part& part = parts_[worker];
  if (noted_.fetch_add(1, std::memory_order_relaxed) >= most_) return parent;
  part.folders.push_back({parent, static_cast<std::uint32_t>(part.names.size()),
                          static_cast<std::uint32_t>(name.size())});
  part.names += name;
  return markOf(worker, part.folders.size() - 1);
}

void FolderNotes::add(std::size_t worker, FolderMark folder, std::int64_t bytes) {
  if (bytes != 0) parts_[worker].shares.push_back({folder, bytes});
}

/// The notes of all workers in one numbering: the roots, then each worker's folders.
struct FolderNotes::Raw {
  std::vector<std::uint32_t> parent;
  std::vector<std::string_view> name;
  std::vector<std::int64_t> bytes;
};

FolderNotes::Raw FolderNotes::collect(std::span<const std::string> percorsi) {
  std::array<std::size_t, kMaxListings + 1> from{};
  std::size_t count = percorsi.size();
  for (std::size_t worker = 0; worker < parts_.size(); ++worker) {
    from[worker + 1] = count;
    count += parts_[worker].folders.size();
  }
  const auto numberOf = [&](FolderMark mark) {
    const auto index = static_cast<std::uint32_t>(mark);
    return static_cast<std::uint32_t>(from[mark >> kWorkerShift] + index);
  };
  Raw raw;
  raw.parent.assign(percorsi.size(), kNone);
  raw.name.assign(percorsi.begin(), percorsi.end());
  raw.parent.reserve(count);
  raw.name.reserve(count);
  raw.bytes.resize(count);
  for (const Part& part : parts_) {
    for (const Found& found : part.folders) {
      raw.parent.push_back(numberOf(found.parent));
      raw.name.push_back(std::string_view(part.names).substr(found.nameAt, found.nameLength));
    }
  }
  for (const Part& part : parts_) {
    for (const Share& share : part.shares) raw.bytes[numberOf(share.folder)] += share.bytes;
  }
  return raw;
}

FolderSizes FolderNotes::finish(std::span<const std::string> percorsi) {
  const Raw raw = collect(percorsi);
  const std::size_t count = raw.parent.size();
  // The children of folder i are children[starts[i]] up to children[starts[i + 1]].
  std::vector<std::uint32_t> starts(count + 1);
  for (const std::uint32_t parent : raw.parent) {
    if (parent != kNone) ++starts[parent + 1];
  }
  std::partial_sum(starts.begin(), starts.end(), starts.begin());
  std::vector<std::uint32_t> children(count - percorsi.size());
  std::vector<std::uint32_t> next(starts.begin(), starts.end() - 1);
  for (std::size_t i = percorsi.size(); i < count; ++i) {
    children[next[raw.parent[i]]++] = static_cast<std::uint32_t>(i);
  }
  // Level by level, which puts the children of one folder side by side and after it.
  FolderSizes sizes;
  sizes.roots_ = percorsi.size();
  sizes.folders_.reserve(count);
  std::vector<std::uint32_t> order(percorsi.size());
  std::iota(order.begin(), order.end(), 0U);
  order.reserve(count);
  for (std::size_t i = 0; i < order.size(); ++i) {
    const std::uint32_t number = order[i];
    FolderSizes::Folder& folder = sizes.folders_.emplace_back();
    folder.firstChild = static_cast<std::uint32_t>(order.size());
    folder.children = starts[number + 1] - starts[number];
    folder.nameAt = static_cast<std::uint32_t>(sizes.names_.size());
    folder.nameLength = static_cast<std::uint32_t>(raw.name[number].size());
    folder.bytes = raw.bytes[number];
    sizes.names_ += raw.name[number];
    for (std::uint32_t c = starts[number]; c < starts[number + 1]; ++c)
      order.push_back(children[c]);
  }
  for (std::size_t i = order.size(); i-- > 0;) {
    FolderSizes::Folder& folder = sizes.folders_[i];
    for (const FolderSizes::Folder& child : sizes.childrenOf(folder)) folder.bytes += child.bytes;
  }
  for (Part& part : parts_) part = {};
  noted_ = 0;
  return sizes;
}

}  // namespace pellak::walker
