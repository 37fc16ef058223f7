#include "scanners/duplicati/Contenuti.h"

#include <algorithm>
#include <span>
#include <tuple>

namespace pellak::scanners {
namespace {

/// Files that get no number from their volume can't be told to be one.
bool stessoFile(const Candidato& a, const Candidato& b) {
  return a.size == b.size && a.dev == b.dev && a.ino == b.ino && a.ino != 0;
}

void ordinaNomi(std::vector<Candidato>& candidati, std::size_t da, std::size_t fine,
                const Candidati& testi) {
  std::sort(candidati.begin() + static_cast<std::ptrdiff_t>(da),
            candidati.begin() + static_cast<std::ptrdiff_t>(fine),
            [&](const Candidato& a, const Candidato& b) {
              return testi.percorso(a) < testi.percorso(b);
            });
}

auto chiave(const Contenuto& c) { return std::tie(c.noto, c.impronta); }

bool uguali(const Contenuto& a, const Contenuto& b) {
  if (a.size != b.size || chiave(a) != chiave(b)) return false;
  return a.noto != Conoscenza::tutto || a.digest == b.digest;
}

bool prima(const Contenuto& a, const Contenuto& b) {
  if (a.size != b.size) return a.size > b.size;
  if (chiave(a) != chiave(b)) return chiave(a) < chiave(b);
  return a.noto == Conoscenza::tutto && a.digest < b.digest;
}

/// Keeps the runs of at least two of a sorted list.
template <class T, class Uguali>
void toglieSoli(std::vector<T>& ordinati, const Uguali& simili) {
  std::size_t tenuti = 0;
  for (std::size_t i = 0; i < ordinati.size();) {
    std::size_t fine = i + 1;
    while (fine < ordinati.size() && simili(ordinati[i], ordinati[fine])) ++fine;
    if (fine - i > 1) {
      for (; i < fine; ++i) ordinati[tenuti++] = ordinati[i];
    }
    i = fine;
  }
  ordinati.resize(tenuti);
}

template <class T>
bool stessaDimensione(const T& a, const T& b) {
  return a.size == b.size;
}

}  // namespace

std::vector<Contenuto> raggruppaPerFile(std::vector<Candidato>& candidati, const Candidati& testi) {
  std::sort(candidati.begin(), candidati.end(), [](const Candidato& a, const Candidato& b) {
    return std::tie(b.size, a.dev, a.ino) < std::tie(a.size, b.dev, b.ino);
  });
  toglieSoli(candidati, stessaDimensione<Candidato>);
  std::vector<Contenuto> contenuti;
  contenuti.reserve(candidati.size());
  for (std::size_t i = 0; i < candidati.size();) {
    std::size_t fine = i + 1;
    while (fine < candidati.size() && stessoFile(candidati[i], candidati[fine])) ++fine;
    if (fine - i > 1) ordinaNomi(candidati, i, fine, testi);
    Contenuto contenuto;
    contenuto.size = candidati[i].size;
    contenuto.primo = static_cast<std::uint32_t>(i);
    contenuto.quanti = static_cast<std::uint32_t>(fine - i);
    contenuti.push_back(contenuto);
    i = fine;
  }
  toglieSoli(contenuti, stessaDimensione<Contenuto>);
  return contenuti;
}

void tieniUguali(std::vector<Contenuto>& contenuti) {
  contenuti.erase(std::remove_if(contenuti.begin(), contenuti.end(),
                                 [](const Contenuto& c) { return c.noto == Conoscenza::perso; }),
                  contenuti.end());
  std::sort(contenuti.begin(), contenuti.end(), prima);
  toglieSoli(contenuti, uguali);
  contenuti.shrink_to_fit();  // mostly little is left, and the groups need room
}

void lasciaAltri(std::vector<Candidato>& candidati, std::vector<Contenuto>& contenuti) {
  std::size_t quanti = 0;
  for (const Contenuto& contenuto : contenuti) quanti += contenuto.quanti;
  std::vector<Candidato> tenuti;
  tenuti.reserve(quanti);
  for (Contenuto& contenuto : contenuti) {
    const auto suoi = std::span(candidati).subspan(contenuto.primo, contenuto.quanti);
    contenuto.primo = static_cast<std::uint32_t>(tenuti.size());
    tenuti.insert(tenuti.end(), suoi.begin(), suoi.end());
  }
  candidati.swap(tenuti);
}

std::size_t fineUguali(const std::vector<Contenuto>& contenuti, std::size_t da) {
  std::size_t fine = da + 1;
  while (fine < contenuti.size() && uguali(contenuti[da], contenuti[fine])) ++fine;
  return fine;
}

}  // namespace pellak::scanners
