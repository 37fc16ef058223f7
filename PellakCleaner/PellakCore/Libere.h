#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "PellakCore/base/Parte.h"

namespace pellak {

/// What emptying the Trash surely frees of each path of a group; 0 where it is not known. Copies
/// mostly free the same, so one number stands for all until they differ.
class Libere {
 public:
  Libere() = default;
  explicit Libere(const std::vector<std::int64_t>& byte) {
    if (byte.empty()) return;
    tutte_ = byte.front();
    for (const std::int64_t uno : byte) {
      if (uno != tutte_) diverse_.scrivi() = byte;
    }
  }

  std::int64_t operator[](std::size_t indice) const {
    if (!diverse()) return tutte_;
    return indice < diverse_->size() ? (*diverse_)[indice] : 0;
  }

  bool diverse() const { return diverse_.presente(); }

  /// A path has left the group.
  void togli(std::size_t indice) {
    if (!diverse() || indice >= diverse_->size()) return;
    std::vector<std::int64_t>& byte = diverse_.scrivi();
    byte.erase(byte.begin() + static_cast<std::ptrdiff_t>(indice));
  }

 private:
  std::int64_t tutte_ = 0;
  Parte<std::vector<std::int64_t>> diverse_;
};

}  // namespace pellak
