#pragma once

#include <string_view>
#include <sys/stat.h>

#include "platform/DirectoryLister.h"

namespace pellak::walker {

/// The stat record of what the system told. Attributes that come from a listing have no mode:
/// they get the permissions 0644 (0755 for folders), which nobody asked the system for.
struct stat statRecordOf(const EntryAttributes& attributes);

/// What a record tells of identity: file, times, type. The rest is left at 0.
EntryAttributes identifying(const struct stat& record);

BulkEntry bulkEntryOf(std::string_view name, const EntryAttributes& attributes);

}  // namespace pellak::walker
