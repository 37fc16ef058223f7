#pragma once

#include <sys/stat.h>

#include "platform/EntryType.h"

namespace pellak::posix {

/// What the mode of a stat record says.
inline EntryType typeOf(mode_t mode) {
  if (S_ISDIR(mode)) return EntryType::directory;
  if (S_ISLNK(mode)) return EntryType::link;
  return S_ISREG(mode) ? EntryType::regular : EntryType::other;
}

}  // namespace pellak::posix
