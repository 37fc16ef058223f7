#include "scanners/walker/FreeSpace.h"

#include <algorithm>
#include <utility>

#include "PellakCore/base/BytePath.h"

namespace pellak::walker {

bool FreeSpace::plain(std::size_t worker, const EntryAttributes& attributes) const {
  const Part& part = parts_[worker];
  return attributes.type != EntryType::regular || attributes.alloc == 0 ||
         (attributes.nlink != 0 && part.plainKnown && part.plainDev == attributes.dev);
}

Result<OwnSpace> FreeSpace::ask(Part& part, const DirectoryHandle* folder, std::string_view name,
                                const EntryAttributes& attributes) {
  if (folder == nullptr) return Error{ErrorKind::failed, 0, "no folder"};
  if (folder->sharesSpace()) return folder->ownSpace(name.data());
  part.plainDev = attributes.dev;
  part.plainKnown = true;
  if (attributes.nlink == 0) return folder->ownSpace(name.data());
  return OwnSpace{attributes.alloc, attributes.nlink};
}

void FreeSpace::file(std::size_t worker, std::size_t root, const DirectoryHandle* folder,
                     std::string_view name, const EntryAttributes& attributes) {
  Part& part = parts_[worker];
  OwnSpace own{attributes.alloc, attributes.nlink};
  if (!plain(worker, attributes)) {
    const auto told = ask(part, folder, name, attributes);
    own = told ? *told : OwnSpace{0, 1};  // may be shared
  }
  count(part, root, own, attributes);
}

void FreeSpace::rootFile(std::size_t worker, std::size_t root, const std::string& percorso,
                         const EntryAttributes& attributes) {
  Part& part = parts_[worker];
  const std::string_view parent = cartellaSopra(percorso);
  if (!plain(worker, attributes) && (part.parent == nullptr || part.parentPath != parent)) {
    auto opened = ambiente_.lister.open(parent);
    part.parentPath = parent;
    part.parent = opened ? std::move(opened).value() : nullptr;
  }
  file(worker, root, part.parent.get(), std::string_view(percorso).substr(percorso.rfind('/') + 1),
       attributes);
}

void FreeSpace::count(Part& part, std::size_t root, const OwnSpace& own,
                      const EntryAttributes& attributes) {
  const std::int64_t bytes = std::clamp<std::int64_t>(own.bytes, 0, attributes.alloc);
  std::int64_t kept = attributes.alloc;
  if (own.nlink > 1) {
    Names& names = part.links[Link{root, attributes.ino, attributes.dev}];
    ++names.seen;
    names.all = own.nlink;
    names.bytes = bytes;
  } else {
    kept -= bytes;
  }
  if (kept == 0) return;
  if (part.kept.empty() || part.kept.back().root != root) part.kept.push_back({root, 0});
  part.kept.back().bytes += kept;
}

std::vector<std::int64_t> FreeSpace::kept(std::size_t roots) const {
  std::vector<std::int64_t> kept(roots);
  std::unordered_map<Link, Names, LinkHash> links;
  for (const Part& part : parts_) {
    for (const Kept& share : part.kept) kept[share.root] += share.bytes;
    for (const auto& [link, names] : part.links) {
      Names& all = links.try_emplace(link, Names{0, names.all, names.bytes}).first->second;
      all.seen += names.seen;
    }
  }
  for (const auto& [link, names] : links) {
    if (names.seen == names.all) kept[link.root] -= names.bytes;
  }
  return kept;
}

}  // namespace pellak::walker
