#include "scanners/duplicati/Insiemi.h"

#include <algorithm>

namespace pellak::scanners {
namespace {

std::size_t parti(std::size_t cose, std::size_t perParte) {
  return (cose + perParte - 1) / perParte;
}

/// Cuts one run evenly.
void taglia(std::size_t da, std::size_t fine, std::size_t piu, bool tutti,
            std::vector<Insieme>& insiemi) {
  const std::size_t quanti = fine - da;
  for (std::size_t restano = parti(quanti, piu); restano > 0; --restano) {
    const std::size_t parte = parti(fine - da, restano);
    insiemi.push_back({static_cast<std::uint32_t>(da), static_cast<std::uint32_t>(parte),
                       tutti && parte == quanti});
    da += parte;
  }
}

/// Whether files of known content, which may be equal to those of the run, follow it.
bool conosciuti(const std::vector<Contenuto>& contenuti, std::size_t da, std::size_t fine) {
  return fine < contenuti.size() && contenuti[fine].noto == Conoscenza::tutto &&
         contenuti[fine].size == contenuti[da].size &&
         contenuti[fine].impronta == contenuti[da].impronta;
}

}  // namespace

std::vector<Insieme> insiemiDi(const std::vector<Contenuto>& contenuti, std::size_t piu) {
  std::vector<Insieme> insiemi;
  for (std::size_t da = 0; da < contenuti.size();) {
    const std::size_t fine = fineUguali(contenuti, da);
    if (contenuti[da].noto == Conoscenza::campioni) {
      taglia(da, fine, piu, !conosciuti(contenuti, da, fine), insiemi);
    }
    da = fine;
  }
  const auto lettura = [&](const Insieme& insieme) {
    return static_cast<double>(contenuti[insieme.da].size) * insieme.quanti;
  };
  std::stable_sort(insiemi.begin(), insiemi.end(),
                   [&](const Insieme& a, const Insieme& b) { return lettura(a) > lettura(b); });
  return insiemi;
}

}  // namespace pellak::scanners
