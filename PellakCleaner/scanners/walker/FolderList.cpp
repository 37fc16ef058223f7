#include <algorithm>
#include <future>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

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

void describeAll(const Ambiente& ambiente, const Listing& listing, const PathOf& percorso,
                 std::vector<BulkEntry>& found) {
  const std::size_t count = found.size();
  const std::size_t threads = std::clamp<std::size_t>(
      std::min<std::size_t>(count / kShare, std::thread::hardware_concurrency()), 1, kMaxListings);
  const std::size_t share = count / threads;
  std::vector<std::future<void>> others;  // joined when they go, also on the way of an exception
  std::size_t begin = 0;
  try {
    for (; others.size() + 1 < threads; begin += share) {
      others.push_back(std::async(std::launch::async, [&, begin] {
        describe(ambiente, listing, percorso, begin, begin + share, found);
      }));
    }
  } catch (const std::system_error&) {
    // No more threads to be had: the rest is done here.
  }
  describe(ambiente, listing, percorso, begin, count, found);
  for (std::future<void>& other : others) other.get();
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
  describeAll(ambiente, listing, path, found);
  std::erase_if(found, [](const BulkEntry& entry) { return entry.name.empty(); });
  return found;
}

}  // namespace pellak::walker
