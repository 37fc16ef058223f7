#include "PellakCore/Finding.h"

#include <limits>
#include <utility>

namespace pellak {
namespace {

constexpr std::int64_t kMassimo = std::numeric_limits<std::int64_t>::max();

}  // namespace

Identita identitaDi(const EntryAttributes& attributi) {
  return {attributi.ino, attributi.mtimeNs, attributi.ctimeNs, attributi.type};
}

std::int64_t sommaSicura(std::int64_t a, std::int64_t b) {
  std::int64_t somma = 0;
  return __builtin_add_overflow(a, b, &somma) ? kMassimo : somma;
}

std::int64_t recuperabili(const Group& gruppo) {
  const auto copie = static_cast<std::int64_t>(gruppo.paths.size());
  std::int64_t byte = 0;
  if (copie < 2) return 0;
  return __builtin_mul_overflow(gruppo.size, copie - 1, &byte) ? kMassimo : byte;
}

void Finding::trattieni(std::string percorso, std::string perche) {
  if (trattenuti.size() < kMaxTrattenuti) {
    trattenuti.push_back({std::move(percorso), std::move(perche)});
  }
}

bool Finding::faSpazio() const {
  return mode == "delete" && !unmeasured && id != "apps" && !kind.starts_with("avvio");
}

std::int64_t Finding::totale() const {
  std::int64_t somma = 0;
  for (const Voce& voce : items) somma = sommaSicura(somma, voce.size);
  for (const Group& gruppo : groups) {
    somma = sommaSicura(somma, duplicati() ? recuperabili(gruppo) : gruppo.size);
  }
  return somma;
}

}  // namespace pellak
