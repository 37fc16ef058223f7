#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "PellakCore/Finding.h"

namespace pellak {

/// Paths that are gone from where a scan found them. One thread at a time.
class Spariti {
 public:
  void aggiungi(std::string_view percorso) { percorsi_.emplace(percorso); }
  void svuota() { percorsi_.clear(); }
  bool vuoti() const { return percorsi_.empty(); }

  /// Whether the path, or a folder above it, is among them.
  bool comprende(std::string_view percorso) const;

 private:
  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view testo) const {
      return std::hash<std::string_view>()(testo);
    }
  };
  std::unordered_set<std::string, Hash, std::equal_to<>> percorsi_;
};

/// Takes out of a finding the entries for which `sparito` says yes. A group that loses some of its
/// paths keeps the size of what is left; one that is left with nothing to choose goes whole.
void togli(Finding& finding, const std::function<bool(std::string_view)>& sparito);
/// The same for what is, or lies in, one of these paths.
void togli(Finding& finding, const Spariti& spariti);

}  // namespace pellak
