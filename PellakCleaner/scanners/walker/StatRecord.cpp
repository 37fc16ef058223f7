#include "scanners/walker/StatRecord.h"

namespace pellak::walker {
namespace {

mode_t usualMode(EntryType type) {
  switch (type) {
    case EntryType::directory:
      return S_IFDIR | 0755;
    case EntryType::link:
      return S_IFLNK | 0777;
    case EntryType::regular:
      return S_IFREG | 0644;
    default:
      return 0;
  }
}

/// Only the BSD family has the field.
template <class Record>
void setFlags(Record& record, std::uint32_t flags) {
  if constexpr (requires { record.st_flags; }) record.st_flags = flags;
}

}  // namespace

struct stat statRecordOf(const EntryAttributes& attributes) {
  struct stat record = {};
  record.st_dev = static_cast<decltype(record.st_dev)>(attributes.dev);
  record.st_mode =
      attributes.mode != 0 ? static_cast<mode_t>(attributes.mode) : usualMode(attributes.type);
  record.st_nlink = static_cast<decltype(record.st_nlink)>(attributes.nlink);
  record.st_ino = attributes.ino;
  record.st_uid = attributes.uid;
  record.st_gid = attributes.gid;
  record.st_size = attributes.size;
  record.st_blocks = attributes.alloc / 512;
  record.st_mtime = attributes.mtime;
  setFlags(record, attributes.flags);
  return record;
}

BulkEntry bulkEntryOf(std::string_view name, const EntryAttributes& attributes) {
  BulkEntry entry;
  entry.name = name;
  entry.isDir = attributes.type == EntryType::directory;
  entry.isLnk = attributes.type == EntryType::link;
  entry.isReg = attributes.type == EntryType::regular;
  if (!entry.isDir) {
    entry.size = attributes.size;
    entry.alloc = attributes.alloc;
  }
  entry.mtime = static_cast<double>(attributes.mtime);
  entry.dev = attributes.dev;
  entry.ino = attributes.ino;
  entry.flags = attributes.flags;
  entry.nlink = attributes.nlink;
  return entry;
}

}  // namespace pellak::walker
