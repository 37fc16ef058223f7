#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/DirectoryLister.h"
#include "scanners/walker/Walker.h"

namespace pellak::walker {

/// One folder's content while it is worked on.
struct Listing {
  std::shared_ptr<DirectoryHandle> handle;
  EntryBatch batch;

  void reset() {
    handle.reset();
    batch.clear();
  }
};

using OpenFolder = std::function<Result<std::shared_ptr<DirectoryHandle>>()>;
using PathOf = std::function<std::string()>;

/// Tells `ambiente` when the error is a refusal; only then the path is built.
void tellRefusal(const Ambiente& ambiente, const Error& error, const PathOf& percorso);

/// Whether a folder found in the one at `percorso` is not to be entered; the path is built only
/// when its name leaves that open.
bool staysOut(const Ambiente& ambiente, std::string_view name, const PathOf& percorso);

/// Opens a folder and reads it into an empty `listing` by the bulk call alone.
bool readBulk(const Ambiente& ambiente, const OpenFolder& open, const PathOf& percorso,
              Listing& listing);

/// The same, with the name listing as the second try.
bool readFolder(const Ambiente& ambiente, const OpenFolder& open, const PathOf& percorso,
                Listing& listing);

/// The attributes of entry `i`, from the listing or asked for; absent (and a refusal told) when
/// there are none to have. `percorso` is the folder's.
std::optional<EntryAttributes> attributesOf(const Ambiente& ambiente, const Listing& listing,
                                            std::size_t i, const PathOf& percorso);

/// Hands the entries [begin, end) of a listing to `onFolder(entry)` and `onFile(name,
/// attributes)`; symbolic links to neither, other things than regular files only without
/// `onlyRegular`.
template <class OnFolder, class OnFile>
void visitEntries(const Ambiente& ambiente, const Listing& listing, std::size_t begin,
                  std::size_t end, bool onlyRegular, const PathOf& percorso, OnFolder&& onFolder,
                  OnFile&& onFile) {
  for (std::size_t i = begin; i < end; ++i) {
    const ListedEntry& entry = listing.batch.entries[i];
    if (entry.type == EntryType::directory) {
      onFolder(entry);
      continue;
    }
    if (entry.type == EntryType::link || (entry.type == EntryType::other && onlyRegular)) continue;
    const std::optional<EntryAttributes> found = attributesOf(ambiente, listing, i, percorso);
    if (!found || found->type == EntryType::link) continue;
    if (found->type == EntryType::directory) {
      // A folder that took a file's place since the listing is not one of its entries.
      if (entry.type == EntryType::unknown) onFolder(entry);
    } else if (found->type == EntryType::regular || !onlyRegular) {
      onFile(entry.name, *found);
    }
  }
}

}  // namespace pellak::walker
