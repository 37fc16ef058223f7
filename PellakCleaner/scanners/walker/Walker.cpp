#include "scanners/walker/Walker.h"

#include <array>
#include <utility>

#include "scanners/walker/Folder.h"
#include "scanners/walker/FolderReader.h"
#include "scanners/walker/StatRecord.h"
#include "scanners/walker/WalkCore.h"

namespace pellak::walker {
namespace {

/// Builds the paths of a folder's files without building the folder's again each time.
class PathMaker {
 public:
  std::string_view operator()(const FileSeen& seen) {
    if (seen.folder.get() != folder_.get()) {
      folder_ = seen.folder;
      path_ = folder_->path();
      appendNome(path_, {});
      stem_ = path_.size();
    }
    path_.resize(stem_);
    path_ += seen.name;
    return path_;
  }

 private:
  FolderRef folder_;  ///< kept, so that no other folder can have its address
  std::string path_;
  std::size_t stem_ = 0;
};

class VisitClient final : public WalkClient {
 public:
  VisitClient(const Filtro& filtro, const detail::Visita& visita)
      : filtro_(filtro), visita_(visita) {}

  bool onlyRegular() const override { return true; }
  bool entersRoot(std::size_t, std::size_t, const std::string&) override { return true; }
  bool entersName(std::string_view name) const override {
    return !filtro_.esclusioni.esclude(name);
  }
  bool filtersPaths() const override { return static_cast<bool>(filtro_.entra); }
  bool entersPath(const std::string& percorso) override { return filtro_.entra(percorso); }

  void file(const FileSeen& seen, const EntryAttributes& attributes) override {
    if (attributes.size < filtro_.minBytes) return;
    visita_(seen.worker, paths_[seen.worker].maker(seen), statRecordOf(attributes));
  }

  void added(std::size_t, std::size_t) override {}
  void done(std::size_t, std::size_t, FolderMark) override {}

 private:
  struct alignas(64) Place {
    PathMaker maker;
  };

  const Filtro& filtro_;
  const detail::Visita& visita_;
  std::array<Place, kMaxListings> paths_;
};

PathOf same(std::string_view percorso) {
  return [percorso] { return std::string(percorso); };
}

}  // namespace

std::optional<std::vector<BulkEntry>> bulkList(const Ambiente& ambiente,
                                               std::string_view percorso) {
  Listing listing;
  const auto open = [&] { return ambiente.lister.open(percorso); };
  if (!readBulk(ambiente, open, same(percorso), listing)) return std::nullopt;
  std::vector<BulkEntry> found;
  found.reserve(listing.batch.entries.size());
  for (std::size_t i = 0; i < listing.batch.entries.size(); ++i) {
    const auto attributes = attributesOf(ambiente, listing, i, same(percorso));
    if (attributes) found.push_back(bulkEntryOf(listing.batch.entries[i].name, *attributes));
  }
  return found;
}

std::optional<std::vector<std::string>> nameList(const Ambiente& ambiente,
                                                 std::string_view percorso) {
  auto opened = ambiente.lister.open(percorso);
  if (!opened) {
    tellRefusal(ambiente, opened.error(), same(percorso));
    return std::nullopt;
  }
  auto names = (*opened)->names();
  if (names) return std::move(names).value();
  tellRefusal(ambiente, names.error(), same(percorso));
  return std::nullopt;
}

std::optional<struct stat> statNoFollow(const Ambiente& ambiente, std::string_view percorso) {
  const auto attributes = ambiente.lister.attributes(percorso);
  if (attributes) return statRecordOf(*attributes);
  tellRefusal(ambiente, attributes.error(), same(percorso));
  return std::nullopt;
}

std::optional<std::string> realPath(const Ambiente& ambiente, std::string_view percorso) {
  auto real = ambiente.lister.resolve(percorso);
  if (real) return std::move(real).value();
  tellRefusal(ambiente, real.error(), same(percorso));
  return std::nullopt;
}

namespace detail {

void walk(const Ambiente& ambiente, std::span<const std::string> radici, const Filtro& filtro,
          const Stop& stop, const Visita& visita) {
  VisitClient client(filtro, visita);
  walkTogether(ambiente, stop, client, radici);
}

std::vector<std::string> walkLevel(const Ambiente& ambiente, std::string_view cartella,
                                   const Filtro& filtro, const Visita& visita) {
  std::vector<std::string> folders;
  Listing listing;
  const auto child = [&](std::string_view name) {
    std::string percorso(cartella);
    appendNome(percorso, name);
    return percorso;
  };
  if (filtro.entra && !filtro.entra(cartella)) return folders;
  const auto open = [&] { return ambiente.lister.open(cartella); };
  if (!readFolder(ambiente, open, same(cartella), listing)) return folders;
  visitEntries(
      ambiente, listing, 0, listing.batch.entries.size(), true, same(cartella),
      [&](const ListedEntry& entry) {
        if (filtro.esclusioni.esclude(entry.name)) return;
        if (staysOut(ambiente, entry.name, same(cartella))) return;
        folders.push_back(child(entry.name));
      },
      [&](std::string_view name, const EntryAttributes& attributes) {
        if (attributes.size < filtro.minBytes) return;
        visita(0, child(name), statRecordOf(attributes));
      });
  return folders;
}

}  // namespace detail
}  // namespace pellak::walker
