#include "scanners/duplicati/Impronta.h"

#include <array>
#include <bit>
#include <cstring>

namespace pellak::scanners {
namespace {

/// Odd, so that the multiplication loses nothing.
constexpr std::uint64_t kMoltiplicatore = 0x9e3779b97f4a7c15;

std::uint64_t mescola(std::uint64_t stato, std::uint64_t parola) {
  return std::rotl((stato ^ parola) * kMoltiplicatore, 31);
}

}  // namespace

std::uint64_t impronta(std::span<const std::byte> dati) {
  // Four chains, so that the processor need not wait for one multiplication after the other.
  std::array<std::uint64_t, 4> stati = {1, 2, 3, 4};
  std::array<std::uint64_t, 4> parole{};
  const std::size_t lunghezza = dati.size();
  while (!dati.empty()) {
    if (dati.size() < sizeof parole) parole = {};
    const std::size_t parte = dati.size() < sizeof parole ? dati.size() : sizeof parole;
    std::memcpy(parole.data(), dati.data(), parte);
    for (std::size_t i = 0; i < stati.size(); ++i) stati[i] = mescola(stati[i], parole[i]);
    dati = dati.subspan(parte);
  }
  std::uint64_t somma = lunghezza;
  for (const std::uint64_t stato : stati) somma = mescola(somma ^ (somma >> 29), stato);
  return somma ^ (somma >> 32);
}

}  // namespace pellak::scanners
