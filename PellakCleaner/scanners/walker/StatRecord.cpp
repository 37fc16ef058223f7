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

constexpr std::int64_t kSecond = 1'000'000'000;

std::int64_t wholeSeconds(std::int64_t ns) { return ns / kSecond - (ns % kSecond < 0 ? 1 : 0); }

timespec timespecOf(std::int64_t ns) {
  timespec time{};
  time.tv_sec = static_cast<time_t>(wholeSeconds(ns));
  time.tv_nsec = static_cast<long>(ns - wholeSeconds(ns) * kSecond);
  return time;
}

std::int64_t nanoseconds(const timespec& time) {
  return static_cast<std::int64_t>(time.tv_sec) * kSecond + time.tv_nsec;
}

/// Only the BSD family has the field.
template <class Record>
void setFlags(Record& record, std::uint32_t flags) {
  if constexpr (requires { record.st_flags; }) record.st_flags = flags;
}

/// The BSD family has its own names for the fields.
template <class Record>
void setTimes(Record& record, const EntryAttributes& attributes) {
  const timespec modified = timespecOf(attributes.mtimeNs);
  const timespec changed = timespecOf(attributes.ctimeNs);
  if constexpr (requires { record.st_mtimespec; }) {
    record.st_mtimespec = modified;
    record.st_ctimespec = changed;
  } else {
    record.st_mtim = modified;
    record.st_ctim = changed;
  }
}

template <class Record>
void readTimes(const Record& record, EntryAttributes& attributes) {
  if constexpr (requires { record.st_mtimespec; }) {
    attributes.mtimeNs = nanoseconds(record.st_mtimespec);
    attributes.ctimeNs = nanoseconds(record.st_ctimespec);
  } else {
    attributes.mtimeNs = nanoseconds(record.st_mtim);
    attributes.ctimeNs = nanoseconds(record.st_ctim);
  }
}

EntryType typeOf(mode_t mode) {
  if (S_ISDIR(mode)) return EntryType::directory;
  if (S_ISLNK(mode)) return EntryType::link;
  return S_ISREG(mode) ? EntryType::regular : EntryType::other;
}

}  // namespace

EntryAttributes identifying(const struct stat& record) {
  EntryAttributes attributes;
  attributes.type = typeOf(record.st_mode);
  attributes.ino = record.st_ino;
  readTimes(record, attributes);
  return attributes;
}

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
  setTimes(record, attributes);
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
