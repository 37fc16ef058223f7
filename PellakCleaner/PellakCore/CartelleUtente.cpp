#include "PellakCore/CartelleUtente.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>

#include "PellakCore/base/BytePath.h"

namespace pellak {
namespace {

/// The file's names and the rules'.
constexpr std::array<std::pair<std::string_view, std::string_view>, 8> kCartelle = {
    {{"DESKTOP", "~/Desktop"},
     {"DOCUMENTS", "~/Documents"},
     {"DOWNLOAD", "~/Downloads"},
     {"MUSIC", "~/Music"},
     {"PICTURES", "~/Pictures"},
     {"PUBLICSHARE", "~/Public"},
     {"TEMPLATES", "~/Templates"},
     {"VIDEOS", "~/Videos"}}};

std::string_view senzaSpazi(std::string_view testo) {
  const std::size_t da = testo.find_first_not_of(" \t\r");
  if (da == std::string_view::npos) return {};
  return testo.substr(da, testo.find_last_not_of(" \t\r") - da + 1);
}

/// Text between double quotes, a backslash before a sign that stands for itself.
std::optional<std::string> traVirgolette(std::string_view testo) {
  if (!testo.starts_with('"')) return {};
  std::string dentro;
  for (std::size_t i = 1; i < testo.size(); ++i) {
    if (testo[i] == '"') return dentro;
    if (testo[i] == '\\' && ++i == testo.size()) return {};
    dentro += testo[i];
  }
  return {};
}

std::optional<Spostamento> leggiRiga(std::string_view riga, std::string_view home) {
  constexpr std::string_view kPrima = "XDG_";
  constexpr std::string_view kDopo = "_DIR";
  constexpr std::string_view kHome = "$HOME/";
  const std::size_t uguale = riga.find('=');
  if (uguale == std::string_view::npos) return {};
  std::string_view nome = senzaSpazi(riga.substr(0, uguale));
  if (!nome.starts_with(kPrima) || !nome.ends_with(kDopo)) return {};
  nome.remove_prefix(kPrima.size());
  nome.remove_suffix(std::min(nome.size(), kDopo.size()));
  const auto nota = std::find_if(kCartelle.begin(), kCartelle.end(),
                                 [&](const auto& cartella) { return cartella.first == nome; });
  auto valore = traVirgolette(senzaSpazi(riga.substr(uguale + 1)));
  if (nota == kCartelle.end() || !valore) return {};
  if (valore->starts_with(kHome)) valore->replace(0, kHome.size() - 1, "~");
  const std::string luogo = standardizza(*valore, home);
  if (luogo.empty() || luogo == home) return {};
  return Spostamento{std::string(nota->second), luogo};
}

}  // namespace

std::vector<Spostamento> leggiCartelleUtente(std::string_view testo, std::string_view home) {
  std::vector<Spostamento> spostamenti;
  while (!testo.empty()) {
    const std::size_t fine = std::min(testo.find('\n'), testo.size());
    auto letto = leggiRiga(testo.substr(0, fine), home);
    testo.remove_prefix(std::min(fine + 1, testo.size()));
    if (!letto) continue;
    // As for a shell that reads the file, the last line counts.
    std::erase_if(spostamenti, [&](const Spostamento& prima) { return prima.da == letto->da; });
    spostamenti.push_back(std::move(*letto));
  }
  return spostamenti;
}

}  // namespace pellak
