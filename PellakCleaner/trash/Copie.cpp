#include "trash/Copie.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

#include "platform/Sha256.h"

namespace pellak::trash {
namespace {

constexpr std::size_t kBuffer = std::size_t{1} << 18U;

bool nota(const Group& gruppo, std::size_t copia) {
  return copia < gruppo.identita.size() && gruppo.identita[copia].nota();
}

/// The content's hash; nothing when it can't be read whole.
std::optional<Sha256Digest> impronta(const OpenFile& file, std::int64_t size) {
  const auto calcolo = creaTwinSha256();
  std::vector<std::byte> buffer(kBuffer);
  std::int64_t letti = 0;
  while (letti < size) {
    const auto parte = file.readAt(letti, buffer);
    if (!parte || *parte == 0) return {};
    calcolo->update(0, std::span(buffer).first(*parte));
    letti += static_cast<std::int64_t>(*parte);
  }
  return calcolo->finish(0);
}

}  // namespace

std::optional<FileMark> Copie::stato(const std::string& percorso) const {
  const auto file = reader_.open(percorso, ReadPlan::samples);
  if (!file) return {};
  const auto letto = (*file)->mark();
  return letto && letto->regular ? std::optional(*letto) : std::nullopt;
}

bool Copie::esiste(const std::string& percorso) const { return stato(percorso).has_value(); }

bool Copie::riscritta(const Group& gruppo, std::size_t copia) const {
  const auto ora = stato(gruppo.paths[copia]);
  return ora && nota(gruppo, copia) && !comeTrovata(gruppo, copia, *ora);
}

bool Copie::ancora(const std::string& percorso, const FileMark& prima) const {
  return stato(percorso) == prima;
}

bool Copie::comeTrovata(const Group& gruppo, std::size_t copia, const FileMark& ora) const {
  if (ora.size != gruppo.size) return false;
  if (nota(gruppo, copia) && !gruppo.dallaCache)
    return ora.mtimeNs == gruppo.identita[copia].mtimeNs;
  if (!gruppo.conHash()) return false;
  return contiene(gruppo.paths[copia], gruppo);
}

bool Copie::contiene(const std::string& percorso, const Group& gruppo) const {
  const auto file = reader_.open(percorso, ReadPlan::whole);
  if (!file) return false;
  const auto ora = (*file)->mark();
  if (!ora || !ora->regular || ora->size != gruppo.size) return false;
  if (impronta(**file, ora->size) != gruppo.hash) return false;
  const auto dopo = (*file)->mark();
  return dopo && *dopo == *ora;
}

std::optional<FileMark> Copie::conservabile(const Group& gruppo, std::size_t copia,
                                            const std::vector<std::string>& scartate) const {
  const std::string& percorso = gruppo.paths[copia];
  const auto prima = stato(percorso);
  if (!prima || !comeTrovata(gruppo, copia, *prima)) return {};
  const bool altroNome = std::any_of(scartate.begin(), scartate.end(), [&](const auto& scartata) {
    const auto altra = stato(scartata);
    return altra && altra->dev == prima->dev && altra->ino == prima->ino;
  });
  if (altroNome) return {};
  // What was only remembered is known once it is read: those that go must hold what stays.
  const bool uguali =
      !gruppo.dallaCache ||
      std::all_of(scartate.begin(), scartate.end(), [&](const std::string& scartata) {
        return !esiste(scartata) || contiene(scartata, gruppo);
      });
  return uguali && ancora(percorso, *prima) ? prima : std::nullopt;
}

}  // namespace pellak::trash
