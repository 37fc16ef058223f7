#pragma once

#include <string>

namespace pellak {

/// A file by which a desktop starts programs when the user logs in.
struct LoginEntry {
  std::string file;  ///< absolute
  std::string text;
};

}  // namespace pellak
