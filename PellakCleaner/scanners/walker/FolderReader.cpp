#include "scanners/walker/FolderReader.h"

#include <algorithm>
#include <utility>

#include "scanners/walker/Folder.h"

namespace pellak::walker {
namespace {

void appendNames(const std::vector<std::string>& names, EntryBatch& batch) {
  for (const std::string& name : names) {
    const std::size_t bytes = name.size() + 1;
    if (bytes > EntryBatch::kBlockBytes) continue;
    char* place = reinterpret_cast<char*>(batch.room(bytes).data());
    std::copy_n(name.c_str(), bytes, place);
    batch.keep(bytes);
    batch.entries.push_back({{place, name.size()}, EntryType::unknown});
  }
}

Result<void> tryBulk(const OpenFolder& open, Listing& listing) {
  auto opened = open();
  if (!opened) return opened.error();
  listing.handle = std::move(opened).value();
  auto read = listing.handle->read(listing.batch);
  if (!read) listing.batch.clear();
  return read;
}

Result<void> tryNames(const OpenFolder& open, Listing& listing) {
  if (!listing.handle) {
    auto opened = open();
    if (!opened) return opened.error();
    listing.handle = std::move(opened).value();
  }
  const auto names = listing.handle->names();
  if (!names) return names.error();
  appendNames(*names, listing.batch);
  return {};
}

}  // namespace

void tellRefusal(const Ambiente& ambiente, const Error& error, const PathOf& percorso) {
  if (error.kind == ErrorKind::denied && ambiente.diniego) ambiente.diniego(percorso());
}

bool staysOut(const Ambiente& ambiente, std::string_view name, const PathOf& percorso) {
  if (ambiente.confini == nullptr || !ambiente.confini->forse(name)) return false;
  std::string folder = percorso();
  appendNome(folder, name);
  return ambiente.confini->fuori(folder);
}

bool readBulk(const Ambiente& ambiente, const OpenFolder& open, const PathOf& percorso,
              Listing& listing) {
  const Result<void> read = tryBulk(open, listing);
  if (!read) tellRefusal(ambiente, read.error(), percorso);
  return read.ok();
}

/// Both tries may be refused: the folder is told once.
bool readFolder(const Ambiente& ambiente, const OpenFolder& open, const PathOf& percorso,
                Listing& listing) {
  const Result<void> bulk = tryBulk(open, listing);
  if (bulk && (!listing.batch.entries.empty() || ambiente.lister.emptyIsCertain())) return true;
  const Result<void> names = tryNames(open, listing);
  const bool first = !bulk && bulk.error().kind == ErrorKind::denied;
  if (first || !names) tellRefusal(ambiente, first ? bulk.error() : names.error(), percorso);
  return names.ok();
}

std::optional<EntryAttributes> attributesOf(const Ambiente& ambiente, const Listing& listing,
                                            std::size_t i, const PathOf& percorso) {
  if (!listing.batch.attributes.empty()) return listing.batch.attributes[i];
  const std::string_view name = listing.batch.entries[i].name;
  auto asked = listing.handle->attributes(name.data());
  if (asked) return *asked;
  tellRefusal(ambiente, asked.error(), [&] {
    std::string child = percorso();
    appendNome(child, name);
    return child;
  });
  return std::nullopt;
}

}  // namespace pellak::walker
