#include "scanners/duplicati/ScannerDuplicati.h"

#include <algorithm>
#include <limits>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "PellakCore/PostiDelSistema.h"
#include "PellakCore/base/BytePath.h"
#include "scanners/Luoghi.h"
#include "scanners/duplicati/Contenuti.h"
#include "scanners/duplicati/Gruppi.h"
#include "scanners/duplicati/Lettura.h"
#include "scanners/duplicati/Svantaggi.h"
#include "scanners/walker/Walker.h"

namespace pellak::scanners {
namespace {

constexpr std::int64_t kMiB = 1'048'576;

std::int64_t byteMinimi(std::int64_t mib) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  if (mib <= 0) return 0;
  return mib > kMax / kMiB ? kMax : mib * kMiB;
}

/// The system's own folders that the roots lie in or hold: what is found there could never go.
void escludiSistema(const ScanContext& ctx, std::vector<std::string>& esclusi) {
  for (const std::string_view posto : postiDelSistema()) {
    const auto tocca = [&](const std::string& scritta) {
      const std::string radice = standardizza(scritta, ctx.home);
      return dentroCartella(radice, posto) || dentroCartella(posto, radice);
    };
    const std::vector<std::string>& radici = ctx.regole.duplicati.roots;
    if (std::any_of(radici.begin(), radici.end(), tocca)) esclusi.emplace_back(posto);
  }
}

/// What the user excluded is left out under its real path as well.
walker::Filtro filtroDi(const ScanContext& ctx) {
  const RegoleDuplicati& regole = ctx.regole.duplicati;
  walker::Filtro filtro{{regole.excludeDirNames, regole.excludeBundleSuffixes},
                        byteMinimi(regole.minSizeMb)};
  std::vector<std::string> esclusi;
  for (const std::string& scritto : regole.excludePaths) {
    std::string escluso = standardizza(scritto, ctx.home);
    if (escluso.empty()) continue;
    if (auto reale = ctx.lister.resolve(escluso)) esclusi.push_back(std::move(*reale));
    esclusi.push_back(std::move(escluso));
  }
  escludiSistema(ctx, esclusi);
  if (esclusi.empty()) return filtro;
  filtro.entra = [esclusi = std::move(esclusi)](std::string_view percorso) {
    return std::none_of(esclusi.begin(), esclusi.end(), [&](const std::string& escluso) {
      return dentroCartella(percorso, escluso);
    });
  };
  return filtro;
}

void raccogli(const ScanContext& ctx, Candidati& candidati, Finding& finding) {
  const walker::Filtro filtro = filtroDi(ctx);
  const Cammino cammino(ctx, ctx.regole.duplicati.roots, filtro);
  struct Nulla {};
  walker::parallelWalk(cammino.ambiente(), cammino.radici(), filtro, ctx.stop,
                       [&](std::string_view percorso, const struct stat& s) {
                         candidati.aggiungi(percorso, s.st_size,
                                            static_cast<std::int32_t>(s.st_dev), s.st_ino);
                         return std::optional<Nulla>();
                       });
  cammino.segna(finding);
}

/// Learns what each copy frees, a few thousand at a time.
void misura(const ScanContext& ctx, std::span<Group> gruppi) {
  constexpr std::size_t kAllaVolta = 4096;
  const walker::Ambiente ambiente{ctx.lister, {}};
  while (!gruppi.empty()) {
    std::vector<std::string> copie;
    std::size_t presi = 0;
    for (; presi < gruppi.size() && copie.size() < kAllaVolta; ++presi) {
      copie.insert(copie.end(), gruppi[presi].paths.begin(), gruppi[presi].paths.end());
    }
    const auto misure = walker::measureForTrash(ambiente, copie, ctx.stop);
    auto misura = misure.begin();
    for (Group& gruppo : gruppi.first(presi)) {
      std::vector<std::int64_t> libere;
      for (std::size_t i = 0; i < gruppo.paths.size(); ++i, ++misura) {
        libere.push_back(misura->value_or(walker::Misura()).libera);
      }
      gruppo.libere = Libere(libere);
    }
    gruppi = gruppi.subspan(presi);
  }
}

}  // namespace

Finding scanDuplicati(const ScanContext& ctx, FileReader& reader, Impronte* impronte) {
  esigiRegole(ctx);
  Finding finding;
  finding.id = "duplicates";
  finding.name = "File duplicati";
  finding.mode = "delete";
  finding.note =
      "Confronto per dimensione, poi hash parziale, poi hash completo. Gli hard link non sono "
      "conteggiati come duplicati.";
  Candidati testi;
  raccogli(ctx, testi, finding);
  std::vector<Candidato> candidati = testi.prendi();
  std::vector<Contenuto> contenuti = raggruppaPerFile(candidati, testi);
  if (impronte != nullptr) impronte->carica(ctx.clock.now());
  Lettura lettura(ctx, reader, testi, candidati, impronte);
  lettura.campioni(contenuti);
  if (impronte != nullptr) impronte->annotaCampioni(contenuti, candidati);
  tieniUguali(contenuti);
  lasciaAltri(candidati, contenuti);
  lettura.interi(contenuti);
  if (impronte != nullptr) impronte->concludi(contenuti, candidati);
  tieniUguali(contenuti);
  Svantaggi svantaggi(ctx, reader);
  finding.groups = gruppiDi(std::move(contenuti), std::move(candidati), testi, svantaggi);
  misura(ctx, finding.groups);
  return finding;
}

}  // namespace pellak::scanners
