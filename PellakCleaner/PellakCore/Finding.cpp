#include "PellakCore/Finding.h"

#include <cstdlib>

namespace pellak {

std::int64_t sommaSicura(std::int64_t a, std::int64_t b) {
  std::int64_t somma = 0;
  if (__builtin_add_overflow(a, b, &somma)) std::abort();
  return somma;
}

std::int64_t recuperabili(const Group& gruppo) {
  const auto copie = static_cast<std::int64_t>(gruppo.paths.size());
  std::int64_t byte = 0;
  if (copie < 2) return 0;
  if (__builtin_mul_overflow(gruppo.size, copie - 1, &byte)) std::abort();
  return byte;
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
