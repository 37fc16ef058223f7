#include "scanners/duplicati/Svantaggi.h"

#include <algorithm>
#include <cstddef>

#include "PellakCore/CopiaTenuta.h"
#include "PellakCore/base/BytePath.h"

namespace pellak::scanners {
namespace {

constexpr std::size_t kMaxRicordati = 1024;

}  // namespace

Svantaggi::Svantaggi(const ScanContext& ctx, FileReader& reader) : reader_(reader) {
  for (const std::string& scritto : ctx.regole.duplicati.passaggi) {
    passaggi_.push_back(espandiTilde(scritto, ctx.home));
  }
  if (const auto casa = ctx.lister.attributes(ctx.home)) devCasa_ = casa->dev;
}

std::uint8_t Svantaggi::di(std::string_view percorso, std::int32_t dev) {
  const std::string_view cartella = percorso.substr(0, percorso.rfind('/'));
  const int somma = svantaggiDelPercorso(percorso, passaggi_) |
                    (dev != devCasa_ ? kAltroVolume : 0) |
                    (scrivibile(cartella.empty() ? "/" : cartella) ? 0 : kNonScrivibile);
  return static_cast<std::uint8_t>(somma);
}

bool Svantaggi::scrivibile(std::string_view cartella) {
  if (scrivibili_.size() >= kMaxRicordati) scrivibili_.clear();
  const auto [posto, nuova] = scrivibili_.try_emplace(std::string(cartella), false);
  if (nuova) posto->second = reader_.writable(cartella);
  return posto->second;
}

}  // namespace pellak::scanners
