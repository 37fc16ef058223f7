#include "scanners/grandi/ScannerGrandi.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <utility>

#include "scanners/Luoghi.h"
#include "scanners/walker/StatRecord.h"
#include "scanners/walker/Walker.h"

namespace pellak::scanners {
namespace {

constexpr double kMiB = 1'048'576;
constexpr double kSecondsPerDay = 86'400;

/// The smallest whole number of bytes that is at least so many MiB.
std::int64_t byteMinimi(double mib) {
  const double byte = std::ceil(mib * kMiB);
  if (!(byte > 0)) return 0;
  constexpr auto kMax = std::numeric_limits<std::int64_t>::max();
  return byte < static_cast<double>(kMax) ? static_cast<std::int64_t>(byte) : kMax;
}

walker::Filtro filtroDi(const Regole& regole) {
  const RegoleDuplicati& condivise = regole.duplicati;
  return {{condivise.excludeDirNames, condivise.excludeBundleSuffixes},
          byteMinimi(regole.grandi.minSizeMb)};
}

std::vector<Voce> cerca(const ScanContext& ctx, const Cammino& cammino,
                        const walker::Filtro& filtro) {
  return walker::parallelWalk(
      cammino.ambiente(), cammino.radici(), filtro, ctx.stop,
      [](std::string_view percorso, const struct stat& stato) {
        return std::optional<Voce>({std::string(percorso),
                                    static_cast<std::int64_t>(stato.st_blocks) * 512,
                                    static_cast<double>(stato.st_mtime), stato.st_size,
                                    identitaDi(walker::identifying(stato))});
      });
}

void ordina(std::vector<Voce>& voci) {
  std::sort(voci.begin(), voci.end(), [](const Voce& a, const Voce& b) {
    return a.size != b.size ? a.size > b.size : a.path < b.path;
  });
  voci.erase(std::unique(voci.begin(), voci.end(),
                         [](const Voce& a, const Voce& b) { return a.path == b.path; }),
             voci.end());
}

Finding segnalazione(std::string id, std::string nome, std::string nota) {
  Finding finding;
  finding.id = std::move(id);
  finding.name = std::move(nome);
  finding.mode = "report";
  finding.note = std::move(nota);
  return finding;
}

}  // namespace

std::vector<Finding> scanGrandi(const ScanContext& ctx) {
  esigiRegole(ctx);
  const RegoleGrandi& regole = ctx.regole.grandi;
  const double limite = ctx.clock.now() - regole.minAgeDays * kSecondsPerDay;
  const auto massimo = static_cast<std::size_t>(std::max<std::int64_t>(regole.top, 0));
  const walker::Filtro filtro = filtroDi(ctx.regole);
  const Cammino cammino(ctx, regole.roots, filtro);
  std::vector<Voce> voci = cerca(ctx, cammino, filtro);
  ordina(voci);
  std::vector<Finding> trovati = {
      segnalazione("large-files", "File grandi",
                   "SOLO REPORT: i file più pesanti, subito visibili qualunque sia la loro età. Il "
                   "programma li elenca senza toccarli."),
      segnalazione("large-old", "File vecchi",
                   fmt::format("SOLO REPORT: file pesanti non modificati da oltre {} giorni: i "
                               "gigabyte dimenticati.",
                               regole.minAgeDays))};
  for (Finding& trovato : trovati) cammino.segna(trovato);
  std::vector<Voce>& vecchi = trovati[1].items;
  for (const Voce& voce : voci) {
    if (vecchi.size() >= massimo) break;
    if (voce.mtime < limite) vecchi.push_back(voce);
  }
  if (voci.size() > massimo) voci.resize(massimo);
  trovati[0].items = std::move(voci);
  return trovati;
}

}  // namespace pellak::scanners
