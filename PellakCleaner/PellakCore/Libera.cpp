#include "PellakCore/Libera.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstring>
#include <functional>
#include <limits>
#include <string>
#include <utility>

namespace pellak {
namespace {

constexpr std::size_t kTutti = std::numeric_limits<std::size_t>::max();

/// How many slashes: eight bytes at a time, since the paths are many.
std::size_t profondita(std::string_view percorso) {
  constexpr std::uint64_t kBarre = 0x2f2f2f2f2f2f2f2f;
  constexpr std::uint64_t kSette = 0x7f7f7f7f7f7f7f7f;
  constexpr std::uint64_t kUni = 0x0101010101010101;
  std::size_t quante = 0;
  while (percorso.size() >= sizeof kBarre) {
    std::uint64_t parola = 0;
    std::memcpy(&parola, percorso.data(), sizeof parola);
    parola ^= kBarre;
    // The high bit of each byte that is 0 now.
    const std::uint64_t nulli = ~(((parola & kSette) + kSette) | parola | kSette);
    quante += (nulli >> 7U) * kUni >> 56U;
    percorso.remove_prefix(sizeof parola);
  }
  return quante + static_cast<std::size_t>(std::count(percorso.begin(), percorso.end(), '/'));
}

/// Paths by their hashes. Two of one hash pass for the same, which makes the sum smaller at worst.
class Percorsi {
 public:
  explicit Percorsi(std::size_t quanti) : posti_(std::bit_ceil(quanti * 2 + 2)) {}

  /// False when it was there.
  bool aggiungi(std::string_view percorso) {
    const std::uint64_t segno = segnoDi(percorso);
    std::uint64_t& posto = posti_[cerca(segno)];
    if (posto == segno) return false;
    posto = segno;
    minima_ = std::min(minima_, profondita(percorso));
    return true;
  }

  /// Whether a folder above is there.
  bool sotto(std::string_view percorso) const {
    std::size_t livello = profondita(percorso);
    while (livello-- > minima_) {
      percorso = percorso.substr(0, percorso.rfind('/'));
      const std::uint64_t segno = segnoDi(percorso);
      if (posti_[cerca(segno)] == segno) return true;
    }
    return false;
  }

 private:
  static std::uint64_t segnoDi(std::string_view percorso) {
    return std::hash<std::string_view>()(percorso) | 1;  // 0 is an empty place
  }

  std::size_t cerca(std::uint64_t segno) const {
    const std::size_t maschera = posti_.size() - 1;
    std::size_t i = (segno >> 1) & maschera;
    while (posti_[i] != 0 && posti_[i] != segno) i = (i + 1) & maschera;
    return i;
  }

  std::vector<std::uint64_t> posti_;
  std::size_t minima_ = kTutti;
};

/// Of the entries of a group that `conta` wants; of a duplicate set the largest stays.
template <class Conta>
std::int64_t liberaGruppo(const Finding& finding, const Group& gruppo, const Conta& conta) {
  std::int64_t somma = 0;
  std::int64_t massima = 0;
  for (std::size_t i = 0; i < gruppo.paths.size(); ++i) {
    if (!conta(gruppo.paths[i])) continue;
    somma = sommaSicura(somma, gruppo.libere[i]);
    massima = std::max(massima, gruppo.libere[i]);
  }
  return finding.duplicati() ? somma - massima : somma;
}

std::size_t quantiPercorsi(std::span<const Finding* const> findings) {
  std::size_t quanti = 0;
  for (const Finding* finding : findings) {
    quanti += finding->items.size();
    for (const Group& gruppo : finding->groups) quanti += gruppo.paths.size();
  }
  return quanti;
}

/// Whether no entry can lie below another one.
bool pari(const std::vector<Voce>& voci) {
  if (voci.empty()) return true;
  // What lies below another has its last slash behind all of the other's path.
  std::size_t ultima = 0;
  std::size_t corta = kTutti;
  for (const Voce& voce : voci) {
    ultima = std::max(ultima, voce.path.rfind('/') + 1);
    corta = std::min(corta, voce.path.size());
  }
  if (ultima <= corta && corta > 1) return true;
  const std::size_t livello = profondita(voci.front().path);
  return std::all_of(voci.begin(), voci.end(),
                     [&](const Voce& voce) { return profondita(voce.path) == livello; });
}

std::int64_t liberaDi(std::span<const Finding* const> findings) {
  Percorsi percorsi(quantiPercorsi(findings));
  std::vector<const Voce*> voci;
  for (const Finding* finding : findings) {
    for (const Voce& voce : finding->items) {
      if (percorsi.aggiungi(voce.path)) voci.push_back(&voce);
    }
  }
  std::vector<bool> prima;
  for (const Finding* finding : findings) {
    for (const Group& gruppo : finding->groups) {
      for (const std::string& percorso : gruppo.paths) prima.push_back(percorsi.aggiungi(percorso));
    }
  }
  std::int64_t somma = 0;
  for (const Voce* voce : voci) {
    if (!percorsi.sotto(voce->path)) somma = sommaSicura(somma, voce->libera());
  }
  std::size_t posto = 0;
  // What is left of a duplicate set once the entries are gone keeps a copy still.
  const auto resta = [&](const std::string& percorso) {
    return prima[posto++] && !percorsi.sotto(percorso);
  };
  for (const Finding* finding : findings) {
    for (const Group& gruppo : finding->groups) {
      somma = sommaSicura(somma, liberaGruppo(*finding, gruppo, resta));
    }
  }
  return somma;
}

}  // namespace

std::int64_t libera(const Finding& finding) {
  if (finding.mode != "delete" || finding.unmeasured) return 0;
  if (!finding.items.empty() && (!finding.groups.empty() || !pari(finding.items))) {
    const Finding* const solo = &finding;
    return liberaDi(std::span(&solo, 1));
  }
  std::int64_t somma = 0;
  for (const Voce& voce : finding.items) somma = sommaSicura(somma, voce.libera());
  for (const Group& gruppo : finding.groups) somma = sommaSicura(somma, libera(finding, gruppo));
  return somma;
}

std::int64_t libera(const Finding& finding, const Group& gruppo) {
  if (finding.mode != "delete" || finding.unmeasured) return 0;
  return liberaGruppo(finding, gruppo, [](const std::string&) { return true; });
}

std::int64_t libera(std::span<const std::vector<Finding>* const> liste) {
  std::vector<const Finding*> offerti;
  for (const std::vector<Finding>* lista : liste) {
    for (const Finding& finding : *lista) {
      if (finding.faSpazio()) offerti.push_back(&finding);
    }
  }
  return offerti.size() == 1 ? libera(*offerti.front()) : liberaDi(offerti);
}

const SommeSezione& LiberaSezioni::sezione(std::string_view id, const Sec& sezione) {
  const auto nota = note_.find(id);
  if (nota != note_.end() && nota->second.findingsVer == sezione.findingsVer) {
    return nota->second.somme;
  }
  SommeSezione somme;
  const std::vector<Finding>* const sola = &sezione.findings;
  somme.libera = libera(std::span(&sola, 1));
  somme.totale = sezione.totale();
  for (const Finding& finding : sezione.findings) {
    if (finding.mode == "delete" || finding.unmeasured) continue;
    somme.segnalati = sommaSicura(somme.segnalati, finding.totale());
  }
  return note_.insert_or_assign(id, Nota{sezione.findingsVer, somme}).first->second.somme;
}

std::int64_t LiberaSezioni::tutte(std::span<const Sec* const> sezioni) {
  std::vector<std::uint64_t> versioni;
  std::vector<const std::vector<Finding>*> liste;
  for (const Sec* sezione : sezioni) {
    versioni.push_back(sezione->findingsVer);
    liste.push_back(&sezione->findings);
  }
  if (versioni != versioni_) {
    tutte_ = libera(liste);
    versioni_ = std::move(versioni);
  }
  return tutte_;
}

}  // namespace pellak
