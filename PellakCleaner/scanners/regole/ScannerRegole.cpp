#include "scanners/regole/ScannerRegole.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <map>
#include <unordered_set>
#include <utility>

#include "PellakCore/base/BytePath.h"
#include "scanners/Luoghi.h"
#include "scanners/walker/StatRecord.h"
#include "scanners/walker/Walker.h"

namespace pellak::scanners {
namespace {

constexpr double kSecondsPerDay = 86'400;

/// A place of the rules as a path: "~" expanded and the folder above it real. Empty when the
/// place isn't absolute or there is no such folder.
std::string luogo(const walker::Ambiente& ambiente, std::string_view scritto,
                  const std::string& home) {
  const std::string percorso = standardizza(scritto, home);
  if (percorso.empty() || percorso == "/") return percorso;
  const auto sopra = walker::realPath(ambiente, cartellaSopra(percorso));
  return sopra ? unisci(*sopra, ultimoComponente(percorso)) : std::string();
}

char minuscola(char lettera) {
  return lettera >= 'A' && lettera <= 'Z' ? static_cast<char>(lettera + ('a' - 'A')) : lettera;
}

/// Whether the name, its ASCII letters in lower case, ends with the suffix as written.
bool finisceCon(std::string_view nome, std::string_view suffisso) {
  if (nome.size() < suffisso.size()) return false;
  const std::string_view coda = nome.substr(nome.size() - suffisso.size());
  return std::equal(coda.begin(), coda.end(), suffisso.begin(),
                    [](char lettera, char voluta) { return minuscola(lettera) == voluta; });
}

/// Whether the whole name matches the pattern, in which "*" stands for any run of bytes. ASCII
/// letters match in either case: what is to be kept back must not slip through by its spelling.
bool corrisponde(std::string_view nome, std::string_view modello) {
  std::size_t n = 0;
  std::size_t m = 0;
  std::size_t ripresa = std::string_view::npos;  // after the last "*" met
  std::size_t coperti = 0;                       // where the name goes on after what it took
  while (n < nome.size()) {
    if (m < modello.size() && modello[m] == '*') {
      ripresa = ++m;
      coperti = n;
    } else if (m < modello.size() && minuscola(nome[n]) == minuscola(modello[m])) {
      ++n;
      ++m;
    } else if (ripresa != std::string_view::npos) {
      m = ripresa;
      n = ++coperti;
    } else {
      return false;
    }
  }
  return modello.find_first_not_of('*', m) == std::string_view::npos;
}

bool esclusa(const RegolaCategoria& regola, std::string_view percorso) {
  const std::string_view nome = ultimoComponente(percorso);
  return std::any_of(regola.except.begin(), regola.except.end(),
                     [&](const std::string& modello) { return corrisponde(nome, modello); });
}

/// The paths an entry names, in the order of the rules, some perhaps twice.
class Raccolta {
 public:
  Raccolta(const walker::Ambiente& ambiente, const std::string& home)
      : ambiente_(ambiente), home_(home) {}

  void figliDi(std::string_view scritto) {
    const std::string cartella = luogo(ambiente_, scritto, home_);
    if (cartella.empty()) return;
    const auto stato = walker::statNoFollow(ambiente_, cartella);
    if (stato && S_ISDIR(stato->st_mode)) elenca(cartella, {});
  }

  void percorso(std::string_view scritto) {
    std::string intero = luogo(ambiente_, scritto, home_);
    if (!intero.empty()) trovati_.push_back(std::move(intero));
  }

  void modello(std::string_view scritto) {
    const std::string intero = luogo(ambiente_, scritto, home_);
    const std::string_view ultimo = ultimoComponente(intero);
    if (ultimo.substr(0, 2) != "*.") return;
    const std::string cartella = intero.substr(0, intero.size() - ultimo.size() - 1);
    elenca(cartella.empty() ? "/" : cartella, ultimo.substr(1));
  }

  const std::vector<std::string>& trovati() const { return trovati_; }
  std::vector<std::string> prendi() { return std::move(trovati_); }

 private:
  void elenca(const std::string& cartella, std::string_view suffisso) {
    const auto nomi = walker::nameList(ambiente_, cartella);
    if (!nomi) return;
    if (trovati_.empty()) trovati_.reserve(nomi->size());
    for (const std::string& nome : *nomi) {
      if (finisceCon(nome, suffisso)) trovati_.push_back(unisci(cartella, nome));
    }
  }

  const walker::Ambiente& ambiente_;
  const std::string& home_;
  std::vector<std::string> trovati_;
};

Raccolta raccogli(const walker::Ambiente& ambiente, const std::string& home,
                  const RegolaCategoria& regola) {
  Raccolta raccolta(ambiente, home);
  raccolta.figliDi(regola.childrenOf);
  for (const std::string& cartella : regola.folders) raccolta.figliDi(cartella);
  for (const std::string& percorso : regola.paths) raccolta.percorso(percorso);
  for (const std::string& modello : regola.glob) raccolta.modello(modello);
  return raccolta;
}

/// Hands each candidate on once, in order. What one folder holds is different anyway.
void unaVolta(std::vector<std::string>& candidati, bool unaSolaCartella,
              const std::function<void(std::string&)>& visita) {
  std::unordered_set<std::string> visti;
  for (std::string& candidato : candidati) {
    if (unaSolaCartella || visti.insert(candidato).second) visita(candidato);
  }
}

/// Which volumes have files that share room; each is asked once.
class SpazioComune {
 public:
  explicit SpazioComune(const walker::Ambiente& ambiente) : ambiente_(ambiente) {}

  bool puo(std::uint64_t dev, const std::string& file) {
    const auto [volume, nuovo] = noti_.try_emplace(dev);
    if (nuovo) volume->second = walker::sharesSpace(ambiente_, cartellaSopra(file));
    return volume->second;
  }

 private:
  const walker::Ambiente& ambiente_;
  std::map<std::uint64_t, bool> noti_;
};

/// Whether a candidate can't move because of a volume; it is marked then.
bool trattenuto(const ScanContext& ctx, const std::string& candidato, Finding& finding) {
  if (mountBelow(ctx.volumi, candidato) != nullptr) {
    finding.trattieni(candidato, "contiene un altro disco: smontalo per poterlo spostare");
    return true;
  }
  const bool volume = std::any_of(ctx.volumi.begin(), ctx.volumi.end(),
                                  [&](const Mount& mount) { return mount.path == candidato; });
  if (volume) finding.trattieni(candidato, "è un altro disco: smontalo per poterlo spostare");
  return volume;
}

/// The candidates that are old enough; folders, and files that may share their room, with no size
/// yet, the rest with what it takes. What is not offered because it could not be moved is marked in
/// `finding`.
std::vector<Voce> filtra(const walker::Ambiente& ambiente, const ScanContext& ctx,
                         const RegolaCategoria& regola, std::vector<std::string> candidati,
                         Finding& finding) {
  const bool conEta = regola.minAgeDays > 0;
  const double limite = ctx.clock.now() - regola.minAgeDays * kSecondsPerDay;
  const bool unaSola = regola.folders.empty() && regola.paths.empty() && regola.glob.empty();
  SpazioComune comune(ambiente);
  std::vector<Voce> voci;
  unaVolta(candidati, unaSola, [&](std::string& candidato) {
    if (ctx.stop && ctx.stop()) throw ScanCancelled();
    if (esclusa(regola, candidato) || ambiente.confini->fuori(candidato)) return;
    const auto stato = walker::statNoFollow(ambiente, candidato);
    if (!stato || S_ISLNK(stato->st_mode)) return;
    const auto mtime = static_cast<double>(stato->st_mtime);
    if (conEta && mtime > limite) return;
    if (regola.mode == "delete" && trattenuto(ctx, candidato, finding)) return;
    const bool cartella = S_ISDIR(stato->st_mode);
    const std::int64_t byte = cartella ? 0 : static_cast<std::int64_t>(stato->st_blocks) * 512;
    if (!cartella && byte <= 0) return;
    const bool altriNomi = !cartella && stato->st_nlink > 1;
    const bool daChiedere = !cartella && !altriNomi && regola.mode == "delete" &&
                            comune.puo(static_cast<std::uint64_t>(stato->st_dev), candidato);
    voci.push_back({std::move(candidato), daChiedere ? 0 : byte, mtime,
                    cartella ? 0 : stato->st_size, identitaDi(walker::identifying(*stato)),
                    altriNomi ? byte : 0});
  });
  return voci;
}

/// Only what has no size yet is walked: a million files in one folder are measured already.
void misura(const walker::Ambiente& ambiente, const ScanContext& ctx, bool offerte,
            std::vector<Voce>& voci) {
  std::vector<std::string> percorsi;
  std::vector<std::size_t> posti;
  for (std::size_t i = 0; i < voci.size(); ++i) {
    if (voci[i].size > 0) continue;
    percorsi.push_back(voci[i].path);
    posti.push_back(i);
  }
  if (offerte) {
    const auto misure = walker::measureForTrash(ambiente, percorsi, ctx.stop);
    for (std::size_t i = 0; i < misure.size(); ++i) {
      const auto [byte, libera] = misure[i].value_or(walker::Misura());
      voci[posti[i]].size = byte;
      voci[posti[i]].condivisi = byte - libera;
    }
  } else {
    const auto misure = walker::measureTrees(ambiente, percorsi, ctx.stop);
    for (std::size_t i = 0; i < misure.size(); ++i) voci[posti[i]].size = misure[i].value_or(0);
  }
  std::erase_if(voci, [](const Voce& voce) { return voce.size <= 0; });
  std::stable_sort(voci.begin(), voci.end(),
                   [](const Voce& a, const Voce& b) { return a.size > b.size; });
}

}  // namespace

Finding scanRegola(const ScanContext& ctx, const RegolaCategoria& regola) {
  Finding finding;
  finding.id = regola.id;
  finding.name = regola.name;
  finding.mode = regola.mode;
  finding.note = regola.note;
  walker::Ambiente ambiente = ambienteDi(ctx);
  Raccolta raccolta = raccogli(ambiente, ctx.home, regola);
  walker::Confini confini(volumiLontani(ctx, raccolta.trovati()));
  ambiente.confini = &confini;
  finding.items = filtra(ambiente, ctx, regola, raccolta.prendi(), finding);
  misura(ambiente, ctx, regola.mode == "delete", finding.items);
  segnaVolumi(confini, finding);
  return finding;
}

}  // namespace pellak::scanners
