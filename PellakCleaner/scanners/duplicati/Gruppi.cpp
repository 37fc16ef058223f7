#include "scanners/duplicati/Gruppi.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

#include "scanners/duplicati/Fila.h"

namespace pellak::scanners {
namespace {

/// What is left to be known of a copy.
struct Copia {
  Identita identita;
  std::uint64_t nome = 0;
  std::int32_t dev = 0;
  std::uint32_t cartella = 0;
  std::uint32_t scaffale = 0;
};

struct Uguali {
  std::int64_t size = 0;
  Sha256Digest digest{};
  std::uint32_t quanti = 0;
  bool ricordati = false;
};

struct Copie {
  Fila<Uguali> insiemi;
  Fila<Copia> copie;  ///< those of the first set, then those of the second, …
};

Copie raccogli(const std::vector<Contenuto>& contenuti, const std::vector<Candidato>& candidati) {
  Copie tutte;
  for (std::size_t da = 0; da < contenuti.size();) {
    const std::size_t fine = fineUguali(contenuti, da);
    Uguali insieme{contenuti[da].size, contenuti[da].digest, static_cast<std::uint32_t>(fine - da)};
    for (; da < fine; ++da) {
      const Contenuto& c = contenuti[da];
      const Candidato& candidato = candidati[c.primo];
      insieme.ricordati = insieme.ricordati || c.memoria == Memoria::hash;
      tutte.copie.push_back({{candidato.ino, c.mtimeNs, c.ctimeNs, EntryType::regular},
                             candidato.nome,
                             candidato.dev,
                             candidato.cartella,
                             candidato.scaffale});
    }
    tutte.insiemi.push_back(insieme);
  }
  return tutte;
}

/// Takes the copies of one set off the list, in ascending order of their paths, each file on disk
/// once: what was found as two may have become one by the time it was read.
std::vector<std::pair<std::string, Copia>> prendi(Fila<Copia>& copie, std::uint32_t quante,
                                                  const Candidati& testi) {
  std::vector<std::pair<std::string, Copia>> prese;
  prese.reserve(quante);
  for (; quante > 0; --quante) {
    const Copia& copia = copie.front();
    Candidato testo;
    testo.nome = copia.nome;
    testo.cartella = copia.cartella;
    testo.scaffale = copia.scaffale;
    prese.emplace_back(testi.percorso(testo), copia);
    copie.pop_front();
  }
  const auto file = [](const auto& p) { return std::tie(p.second.dev, p.second.identita.inode); };
  std::sort(prese.begin(), prese.end(), [&](const auto& a, const auto& b) {
    return file(a) != file(b) ? file(a) < file(b) : a.first < b.first;
  });
  prese.erase(std::unique(prese.begin(), prese.end(),
                          [&](const auto& a, const auto& b) { return file(a) == file(b); }),
              prese.end());
  std::sort(prese.begin(), prese.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  return prese;
}

}  // namespace

std::vector<Group> gruppiDi(std::vector<Contenuto> contenuti, std::vector<Candidato> candidati,
                            const Candidati& testi, Svantaggi& svantaggi) {
  Copie tutte = raccogli(contenuti, candidati);
  std::vector<Contenuto>().swap(contenuti);
  std::vector<Candidato>().swap(candidati);
  std::vector<Group> trovati;
  trovati.reserve(tutte.insiemi.size());
  for (; !tutte.insiemi.empty(); tutte.insiemi.pop_front()) {
    const Uguali& insieme = tutte.insiemi.front();
    auto prese = prendi(tutte.copie, insieme.quanti, testi);
    if (prese.size() < 2) continue;
    Group& gruppo = trovati.emplace_back();
    gruppo.size = insieme.size;
    gruppo.hash = insieme.digest;
    gruppo.dallaCache = insieme.ricordati;
    gruppo.paths.reserve(prese.size());
    gruppo.identita.reserve(prese.size());
    for (auto& [percorso, copia] : prese) {
      copia.identita.svantaggi = svantaggi.di(percorso, copia.dev);
      gruppo.paths.push_back(std::move(percorso));
      gruppo.identita.push_back(copia.identita);
    }
  }
  std::sort(trovati.begin(), trovati.end(), [](const Group& a, const Group& b) {
    const std::int64_t liberaA = recuperabili(a);
    const std::int64_t liberaB = recuperabili(b);
    if (liberaA != liberaB) return liberaA > liberaB;
    return a.size != b.size ? a.size > b.size : a.paths.front() < b.paths.front();
  });
  return trovati;
}

}  // namespace pellak::scanners
