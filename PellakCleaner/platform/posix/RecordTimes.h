#pragma once

#include <cstdint>
#include <ctime>

namespace pellak::posix {

/// The times of a stat record, nanoseconds since 1970.
struct RecordTimes {
  std::int64_t modified = 0;
  std::int64_t changed = 0;
};

inline std::int64_t nanoseconds(const timespec& time) {
  return static_cast<std::int64_t>(time.tv_sec) * 1'000'000'000 + time.tv_nsec;
}

/// The BSD family has its own names for the fields.
template <class Record>
RecordTimes timesOf(const Record& record) {
  if constexpr (requires { record.st_mtimespec; }) {
    return {nanoseconds(record.st_mtimespec), nanoseconds(record.st_ctimespec)};
  } else {
    return {nanoseconds(record.st_mtim), nanoseconds(record.st_ctim)};
  }
}

}  // namespace pellak::posix
