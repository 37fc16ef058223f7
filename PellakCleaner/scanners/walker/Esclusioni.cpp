#include "scanners/walker/Esclusioni.h"

#include <algorithm>
#include <utility>

namespace pellak::walker {

Esclusioni::Esclusioni(std::vector<std::string> nomi, std::vector<std::string> suffissi)
    : nomi_(std::move(nomi)), suffissi_(std::move(suffissi)) {
  std::sort(nomi_.begin(), nomi_.end());
}

bool Esclusioni::esclude(std::string_view nome) const {
  if (std::binary_search(nomi_.begin(), nomi_.end(), nome)) return true;
  return std::any_of(suffissi_.begin(), suffissi_.end(),
                     [&](const std::string& suffisso) { return nome.ends_with(suffisso); });
}

}  // namespace pellak::walker
