#include "PellakCore/Regole.h"

#include <algorithm>
#include <utility>

#include "PellakCore/Config.h"
#include "PellakCore/base/BytePath.h"
#include "PellakCore/base/Json.h"

namespace pellak {
namespace {

RegolaCategoria leggiCategoria(Json voce) {
  RegolaCategoria regola;
  regola.id = voce.testo("id");
  regola.name = voce.testo("name");
  regola.mode = voce.testo("mode", "report");
  regola.note = voce.testo("note");
  regola.minAgeDays = voce.numero("min_age_days", 0);
  regola.childrenOf = voce.testo("children_of");
  regola.glob = voce.testi("glob");
  regola.section = voce.testo("section");
  regola.folders = voce.testi("folders");
  regola.paths = voce.testi("paths");
  regola.except = voce.testi("except");
  return regola;
}

RegoleDuplicati leggiDuplicati(Json voce) {
  RegoleDuplicati regole;
  regole.minSizeMb = voce.intero("min_size_mb", regole.minSizeMb);
  regole.roots = voce.testi("roots");
  regole.excludeDirNames = voce.testi("exclude_dir_names");
  regole.excludeBundleSuffixes = voce.testi("exclude_bundle_suffixes");
  regole.excludePaths = voce.testi("exclude_paths");
  return regole;
}

RegoleGrandi leggiGrandi(Json voce) {
  RegoleGrandi regole;
  regole.minSizeMb = voce.numero("min_size_mb", regole.minSizeMb);
  regole.minAgeDays = voce.numero("min_age_days", regole.minAgeDays);
  regole.roots = voce.testi("roots");
  regole.top = voce.intero("top", regole.top);
  return regole;
}

}  // namespace

const RegolaCategoria* Regole::cerca(std::string_view id) const {
  for (const RegolaCategoria& regola : categorie) {
    if (regola.id == id) return &regola;
  }
  return nullptr;
}

Result<Regole> leggiRegole(std::string_view testo) {
  Result<JsonDocument> documento = JsonDocument::parse(testo);
  if (!documento) return documento.error();
  const Json radice = documento->radice();
  if (!radice.oggetto()) return Error{ErrorKind::invalid, 0, "not an object"};
  Regole regole;
  radice["categories"].perOgni([&](Json voce) {
    if (voce.oggetto()) regole.categorie.push_back(leggiCategoria(voce));
  });
  regole.duplicati = leggiDuplicati(radice["duplicates"]);
  regole.grandi = leggiGrandi(radice["large_old"]);
  return regole;
}

Regole conSpostamenti(Regole regole, const std::vector<Spostamento>& spostamenti) {
  const auto sposta = [&](std::string& luogo) {
    for (const Spostamento& spostamento : spostamenti) {
      if (!dentroCartella(luogo, spostamento.da)) continue;
      luogo = spostamento.a + luogo.substr(spostamento.da.size());
      return;
    }
  };
  for (RegolaCategoria& regola : regole.categorie) {
    sposta(regola.childrenOf);
    for (auto* luoghi : {&regola.folders, &regola.paths, &regola.glob}) {
      std::for_each(luoghi->begin(), luoghi->end(), sposta);
    }
  }
  for (auto* radici : {&regole.duplicati.roots, &regole.grandi.roots}) {
    std::for_each(radici->begin(), radici->end(), sposta);
  }
  std::for_each(regole.duplicati.passaggi.begin(), regole.duplicati.passaggi.end(), sposta);
  return regole;
}

Regole conImpostazioni(Regole regole, const Config& impostazioni) {
  regole.duplicati.minSizeMb = impostazioni.intero("dup_min_mb");
  regole.duplicati.excludePaths = impostazioni.testi("dup_exclude");
  regole.grandi.minSizeMb = static_cast<double>(impostazioni.intero("large_min_mb"));
  regole.grandi.minAgeDays = static_cast<double>(impostazioni.intero("large_age_days"));
  for (RegolaCategoria& regola : regole.categorie) {
    if (regola.id == "old-installers") {
      regola.minAgeDays = static_cast<double>(impostazioni.intero("installer_age_days"));
    }
  }
  return regole;
}

}  // namespace pellak
