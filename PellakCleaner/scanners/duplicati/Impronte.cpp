#include "scanners/duplicati/Impronte.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <span>
#include <tuple>
#include <utility>

#include "scanners/duplicati/Impronta.h"

namespace pellak::scanners {
namespace {

/// Some 18 MB.
constexpr std::size_t kMassimo = 200'000;
/// How long a file that no scan comes by is remembered.
constexpr std::uint32_t kMaxGiri = 30;
/// A volume may count its times in steps of this.
constexpr std::int64_t kAssestamentoNs = 2'000'000'000;

/// Changes with the layout, and with how samples are taken.
constexpr std::array<char, 8> kFirma = {'P', 'E', 'L', 'L', 'A', 'K', 'I', '1'};

struct Testata {
  std::array<char, 8> firma = kFirma;
  std::uint64_t somma = 0;
};

template <class T>
bool perFile(const T& a, const T& b) {
  return std::tie(a.dev, a.ino) < std::tie(b.dev, b.ino);
}

std::uint64_t numeroDi(std::int32_t dev) { return static_cast<std::uint32_t>(dev); }

}  // namespace

std::uint64_t firmaDi(std::span<const Contenuto> contenuti,
                      const std::vector<Candidato>& candidati) {
  std::uint64_t firma = contenuti.size();
  for (const Contenuto& c : contenuti) {
    const std::array<std::int64_t, 5> file = {candidati[c.primo].dev,
                                              static_cast<std::int64_t>(candidati[c.primo].ino),
                                              c.size, c.mtimeNs, c.ctimeNs};
    firma += impronta(std::as_bytes(std::span(file)));  // whatever the order
  }
  return firma;
}

void Impronte::carica(double adesso) {
  inizioNs_ = static_cast<std::int64_t>(adesso * 1e9);
  vecchi_.clear();
  nuovi_.clear();
  const auto letto = files_.read(percorso_, sizeof(Testata) + kMassimo * sizeof(Ricordo));
  Testata testata;
  if (!letto || letto->size() < sizeof testata) return;
  std::memcpy(&testata, letto->data(), sizeof testata);
  const auto dati = std::as_bytes(std::span(*letto)).subspan(sizeof testata);
  if (testata.firma != kFirma || dati.size() % sizeof(Ricordo) != 0) return;
  if (testata.somma != impronta(dati)) return;
  vecchi_.resize(dati.size() / sizeof(Ricordo));
  if (!dati.empty()) std::memcpy(vecchi_.data(), dati.data(), dati.size());
  std::sort(vecchi_.begin(), vecchi_.end(), perFile<Ricordo>);
}

bool Impronte::ricordabile(const FileMark& segno) const {
  return segno.ino != 0 && segno.ctimeNs < inizioNs_ - kAssestamentoNs &&
         segno.mtimeNs < inizioNs_ - kAssestamentoNs;
}

const Impronte::Ricordo* Impronte::trova(const std::vector<Ricordo>& ricordi, std::uint64_t dev,
                                         std::uint64_t ino) {
  Ricordo cercato;
  cercato.dev = dev;
  cercato.ino = ino;
  const auto qui = std::lower_bound(ricordi.begin(), ricordi.end(), cercato, perFile<Ricordo>);
  return qui != ricordi.end() && qui->dev == dev && qui->ino == ino ? &*qui : nullptr;
}

bool Impronte::cerca(const FileMark& segno, Contenuto& contenuto) const {
  const Ricordo* r = trova(vecchi_, numeroDi(static_cast<std::int32_t>(segno.dev)), segno.ino);
  if (r == nullptr || r->size != segno.size || r->mtimeNs != segno.mtimeNs ||
      r->ctimeNs != segno.ctimeNs) {
    return false;
  }
  if (r->memoria > static_cast<std::uint32_t>(Memoria::solo)) return false;
  contenuto.impronta = r->impronta;
  contenuto.digest = r->digest;
  contenuto.memoria = static_cast<Memoria>(r->memoria);
  return true;
}

Impronte::Ricordo Impronte::ricordoDi(const Contenuto& c, const Candidato& candidato) {
  Ricordo r;
  r.dev = numeroDi(candidato.dev);
  r.ino = candidato.ino;
  r.size = c.size;
  r.mtimeNs = c.mtimeNs;
  r.ctimeNs = c.ctimeNs;
  r.impronta = c.impronta;
  r.digest = c.digest;
  const Memoria memoria = c.noto == Conoscenza::tutto ? Memoria::hash : c.memoria;
  r.memoria = static_cast<std::uint32_t>(memoria);
  return r;
}

void Impronte::annotaCampioni(const std::vector<Contenuto>& contenuti,
                              const std::vector<Candidato>& candidati) {
  for (const Contenuto& c : contenuti) {
    if (nuovi_.size() == kMassimo) break;
    if (!c.ricordabile || c.noto == Conoscenza::perso) continue;
    nuovi_.push_back(ricordoDi(c, candidati[c.primo]));
  }
  std::sort(nuovi_.begin(), nuovi_.end(), perFile<Ricordo>);
}

void Impronte::concludi(const std::vector<Contenuto>& contenuti,
                        const std::vector<Candidato>& candidati) {
  for (const Contenuto& c : contenuti) {
    if (!c.ricordabile || c.memoria == Memoria::vuoto) continue;
    const bool solo = c.noto == Conoscenza::perso && c.memoria == Memoria::solo;
    if (!solo && c.noto != Conoscenza::tutto) continue;
    const Ricordo nuovo = ricordoDi(c, candidati[c.primo]);
    if (const Ricordo* r = trova(nuovi_, nuovo.dev, nuovo.ino)) {
      nuovi_[static_cast<std::size_t>(r - nuovi_.data())] = nuovo;
    }
  }
  accodaVecchi();
  scrivi();
  std::vector<Ricordo>().swap(vecchi_);
  std::vector<Ricordo>().swap(nuovi_);
}

/// Of the files that this scan did not come by, those seen last.
void Impronte::accodaVecchi() {
  std::erase_if(vecchi_, [&](Ricordo& r) {
    return ++r.giri > kMaxGiri || trova(nuovi_, r.dev, r.ino) != nullptr;
  });
  const std::size_t posti = kMassimo - nuovi_.size();
  if (vecchi_.size() > posti) {
    std::nth_element(vecchi_.begin(), vecchi_.begin() + static_cast<std::ptrdiff_t>(posti),
                     vecchi_.end(),
                     [](const Ricordo& a, const Ricordo& b) { return a.giri < b.giri; });
    vecchi_.resize(posti);
  }
  nuovi_.insert(nuovi_.end(), vecchi_.begin(), vecchi_.end());
}

void Impronte::scrivi() {
  const auto dati = std::as_bytes(std::span(nuovi_));
  Testata testata;
  testata.somma = impronta(dati);
  const std::array<std::string_view, 2> pezzi = {
      std::string_view(reinterpret_cast<const char*>(&testata), sizeof testata),
      std::string_view(reinterpret_cast<const char*>(dati.data()), dati.size())};
  static_cast<void>(files_.replace(percorso_, pezzi));
}

}  // namespace pellak::scanners
