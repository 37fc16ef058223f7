#include "scanners/Luoghi.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "PellakCore/base/BytePath.h"

namespace pellak::scanners {
namespace {

std::vector<std::string> radiciEsistenti(const walker::Ambiente& ambiente,
                                         const std::vector<std::string>& scritte,
                                         const std::string& home, const walker::Filtro& filtro) {
  std::vector<std::string> radici;
  for (const std::string& scritta : scritte) {
    const std::string luogo = standardizza(scritta, home);
    if (luogo.empty()) continue;
    std::optional<std::string> radice = walker::realPath(ambiente, luogo);
    if (!radice || std::find(radici.begin(), radici.end(), *radice) != radici.end()) continue;
    if (filtro.entra && !filtro.entra(*radice)) continue;
    const auto stato = walker::statNoFollow(ambiente, *radice);
    if (stato && S_ISDIR(stato->st_mode)) radici.push_back(std::move(*radice));
  }
  return radici;
}

/// Whether a walk that begins in one folder gets to another one below it.
bool arriva(const std::string& da, std::string_view a, const walker::Esclusioni& esclusioni,
            const std::vector<std::string>& confini) {
  if (da == a || !dentroCartella(a, da)) return false;
  const bool chiusa = std::any_of(confini.begin(), confini.end(), [&](const std::string& confine) {
    return confine != da && dentroCartella(confine, da) && dentroCartella(a, confine);
  });
  for (; !chiusa && a.size() > da.size(); a = a.substr(0, a.rfind('/'))) {
    if (esclusioni.esclude(ultimoComponente(a))) return false;
  }
  return !chiusa;
}

std::vector<std::string> senzaAnnidate(const std::vector<std::string>& radici,
                                       const walker::Esclusioni& esclusioni,
                                       const std::vector<std::string>& confini) {
  std::vector<std::string> rimaste;
  std::copy_if(radici.begin(), radici.end(), std::back_inserter(rimaste),
               [&](const std::string& radice) {
                 return std::none_of(radici.begin(), radici.end(), [&](const std::string& altra) {
                   return arriva(altra, radice, esclusioni, confini);
                 });
               });
  return rimaste;
}

std::vector<std::string> radiciDi(const ScanContext& ctx, const walker::Ambiente& ambiente,
                                  const std::vector<std::string>& scritte,
                                  const walker::Filtro& filtro) {
  const auto esistenti = radiciEsistenti(ambiente, scritte, ctx.home, filtro);
  return senzaAnnidate(esistenti, filtro.esclusioni, volumiLontani(ctx, esistenti));
}

/// Roots themselves are entered, whatever they lie on.
std::vector<std::string> confiniDi(const ScanContext& ctx, const std::vector<std::string>& radici) {
  std::vector<std::string> confini = volumiLontani(ctx, radici);
  std::erase_if(confini, [&](const std::string& confine) {
    return std::find(radici.begin(), radici.end(), confine) != radici.end();
  });
  return confini;
}

}  // namespace

void esigiRegole(const ScanContext& ctx) {
  if (!ctx.regole.guasto.empty()) throw std::runtime_error(ctx.regole.guasto);
}

std::vector<std::string> volumiLontani(const ScanContext& ctx,
                                       std::span<const std::string> cartelle) {
  std::vector<std::string> luoghi;
  for (const Mount& volume : ctx.volumi) {
    const bool dentro = std::any_of(
        cartelle.begin(), cartelle.end(),
        [&](const std::string& cartella) { return dentroCartella(volume.path, cartella); });
    if (volume.remote && dentro) luoghi.push_back(volume.path);
  }
  return luoghi;
}

void segnaVolumi(const walker::Confini& confini, Finding& finding) {
  for (std::string& volume : confini.incontrati()) {
    finding.trattieni(std::move(volume), "volume di rete o FUSE: non esaminato");
  }
}

walker::Ambiente ambienteDi(const ScanContext& ctx) {
  return {ctx.lister,
          [&contatore = ctx.contatore](std::string_view percorso) { contatore.add(percorso); }};
}

Cammino::Cammino(const ScanContext& ctx, const std::vector<std::string>& scritte,
                 const walker::Filtro& filtro)
    : ambiente_(ambienteDi(ctx)),
      radici_(radiciDi(ctx, ambiente_, scritte, filtro)),
      confini_(confiniDi(ctx, radici_)) {
  ambiente_.confini = &confini_;
  if (radici_.empty() && ctx.nota) ctx.nota("Nessuna cartella da esaminare.");
}

}  // namespace pellak::scanners
