#include "scanners/duplicati/ScannerDuplicati.h"

#include <algorithm>
#include <limits>
#include <span>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "PellakCore/base/BytePath.h"
#include "scanners/Luoghi.h"
#include "scanners/duplicati/Contenuti.h"
#include "scanners/duplicati/Lettura.h"
#include "scanners/walker/Walker.h"

namespace pellak::scanners {
namespace {

constexpr std::int64_t kMiB = 1'048'576;

std::int64_t byteMinimi(std::int64_t mib) {
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  if (mib <= 0) return 0;
  return mib > kMax / kMiB ? kMax : mib * kMiB;
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

/// Puts equal files into their group in ascending order of their paths, each file on disk once:
/// what was found as two may have become one by the time it was read.
void riempi(Group& gruppo, std::span<Contenuto> uguali, const std::vector<Candidato>& candidati,
            const Candidati& testi) {
  const auto file = [&](const Contenuto& c) {
    return std::tie(candidati[c.primo].dev, candidati[c.primo].ino);
  };
  const auto percorso = [&](const Contenuto& c) { return testi.percorso(candidati[c.primo]); };
  std::sort(uguali.begin(), uguali.end(), [&](const Contenuto& a, const Contenuto& b) {
    return file(a) != file(b) ? file(a) < file(b) : percorso(a) < percorso(b);
  });
  std::vector<std::pair<std::string, Identita>> copie;
  copie.reserve(uguali.size());
  for (std::size_t i = 0; i < uguali.size(); ++i) {
    if (i > 0 && file(uguali[i]) == file(uguali[i - 1])) continue;
    const Contenuto& copia = uguali[i];
    copie.emplace_back(percorso(copia), Identita{candidati[copia.primo].ino, copia.mtimeNs,
                                                 copia.ctimeNs, EntryType::regular});
  }
  std::sort(copie.begin(), copie.end(),
            [](const auto& a, const auto& b) { return a.first < b.first; });
  gruppo.paths.reserve(copie.size());
  gruppo.identita.reserve(copie.size());
  for (auto& [testo, identita] : copie) {
    gruppo.paths.push_back(std::move(testo));
    gruppo.identita.push_back(identita);
  }
}

std::vector<Group> gruppi(std::vector<Contenuto>& contenuti,
                          const std::vector<Candidato>& candidati, const Candidati& testi) {
  std::vector<Group> trovati;
  for (std::size_t da = 0; da < contenuti.size();) {
    const std::size_t fine = fineUguali(contenuti, da);
    Group gruppo;
    riempi(gruppo, std::span(contenuti).subspan(da, fine - da), candidati, testi);
    gruppo.size = contenuti[da].size;
    gruppo.hash = contenuti[da].digest;
    if (gruppo.paths.size() > 1) trovati.push_back(std::move(gruppo));
    da = fine;
  }
  std::sort(trovati.begin(), trovati.end(), [](const Group& a, const Group& b) {
    const std::int64_t liberaA = recuperabili(a);
    const std::int64_t liberaB = recuperabili(b);
    if (liberaA != liberaB) return liberaA > liberaB;
    return a.size != b.size ? a.size > b.size : a.paths.front() < b.paths.front();
  });
  return trovati;
}

}  // namespace

Finding scanDuplicati(const ScanContext& ctx, FileReader& reader) {
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
  Lettura lettura(ctx, reader, testi, candidati);
  lettura.campioni(contenuti);
  tieniUguali(contenuti);
  lasciaAltri(candidati, contenuti);
  lettura.interi(contenuti);
  tieniUguali(contenuti);
  finding.groups = gruppi(contenuti, candidati, testi);
  return finding;
}

}  // namespace pellak::scanners
