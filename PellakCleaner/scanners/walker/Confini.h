#pragma once

#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace pellak::walker {

/// Folders that operations stay out of, with everything below: the places of volumes that are not
/// to be read. They are known by their real paths before a walk begins, so that nothing is asked
/// of the volumes themselves, and a folder costs a look at its name. Any thread.
class Confini {
 public:
  explicit Confini(std::vector<std::string> luoghi);

  /// Whether a folder of this name may be one of them.
  bool forse(std::string_view nome) const {
    for (const std::string& noto : nomi_) {
      if (noto == nome) return true;
    }
    return false;
  }

  /// Whether this folder is one of them; if so it is taken down.
  bool fuori(std::string_view percorso);

  /// Those that were come by.
  std::vector<std::string> incontrati() const;

 private:
  const std::set<std::string, std::less<>> luoghi_;
  std::vector<std::string> nomi_;
  mutable std::mutex lock_;
  std::set<std::string> incontrati_;
};

}  // namespace pellak::walker
