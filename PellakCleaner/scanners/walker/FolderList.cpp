#include <algorithm>
#include <optional>
#include <utility>

#include "PellakCore/base/InShares.h"
#include "scanners/walker/FolderReader.h"
#include "scanners/walker/StatRecord.h"
#include "scanners/walker/Walker.h"

namespace pellak::walker {
namespace {

/// Entries for which another thread is worth starting.
constexpr std::size_t kShare = 4096;

/// Fills found[begin, end); an entry without a record keeps an empty name.
void describe(const Ambiente& ambiente, const Listing& listing, const PathOf& percorso,
              std::size_t begin, std::size_t end, std::vector<BulkEntry>& found) {
  for (std::size_t i = begin; i < end; ++i) {
    const ListedEntry& entry = listing.batch.entries[i];
    if (entry.type == EntryType::directory) {
      found[i].name = entry.name;
      found[i].isDir = true;
    } else if (const auto attributes = attributesOf(ambiente, listing, i, percorso)) {
      found[i] = bulkEntryOf(entry.name, *attributes);
    }
  }
}

}  // namespace

Result<std::vector<BulkEntry>> listFolder(const Ambiente& ambiente, std::string_view percorso) {
  Error why;
  const auto open = [&] {
    auto opened = ambiente.lister.open(percorso);
    if (!opened) why = opened.error();
    return opened;
  };
  const PathOf path = [&] { return std::string(percorso); };
  Listing listing;
  if (!readFolder(ambiente, open, path, listing)) return why;
  std::vector<BulkEntry> found(listing.batch.entries.size());
  inShares(found.size(), kShare, kMaxListings, [&](std::size_t begin, std::size_t end) {
    describe(ambiente, listing, path, begin, end, found);
  });
  std::erase_if(found, [](const BulkEntry& entry) { return entry.name.empty(); });
  return found;
}

}  // namespace pellak::walker
