#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace pellak::walker {

/// Folder names that a walk does not enter: exact names and endings of names, both by their bytes
/// and case-sensitive. Constant once built; any thread.
class Esclusioni {
 public:
  Esclusioni() = default;
  Esclusioni(std::vector<std::string> nomi, std::vector<std::string> suffissi);

  /// Whether a folder of this name (its last component) stays out.
  bool esclude(std::string_view nome) const;

 private:
  std::vector<std::string> nomi_;  ///< sorted
  std::vector<std::string> suffissi_;
};

}  // namespace pellak::walker
