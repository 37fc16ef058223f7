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

Result<FileMark> Copie::stato(const std::string& percorso) const {
  const auto file = reader_.open(percorso, ReadPlan::samples);
  if (!file) return file.error();
  auto letto = (*file)->mark();
  if (letto && !letto->regular) return Error{ErrorKind::invalid, 0, "not a regular file"};
  return letto;
}

bool Copie::esiste(const std::string& percorso) const { return stato(percorso).ok(); }

bool Copie::ancora(const std::string& percorso, const FileMark& prima) const {
  const auto ora = stato(percorso);
  return ora && *ora == prima;
}

bool Copie::comeTrovata(const Group& gruppo, std::size_t copia, const FileMark& ora) const {
  if (ora.size != gruppo.size) return false;
  if (nota(gruppo, copia)) {
    const Identita& trovata = gruppo.identita[copia];
    if (ora.mtimeNs != trovata.mtimeNs) return false;
    const bool stessa = ora.ino == trovata.inode && ora.ctimeNs == trovata.ctimeNs;
    if (stessa && !gruppo.dallaCache) return true;
  }
  if (!gruppo.conHash()) return false;
  const auto file = reader_.open(gruppo.paths[copia], ReadPlan::whole);
  return file && impronta(**file, ora.size) == gruppo.hash && ancora(gruppo.paths[copia], ora);
}

Result<FileMark> Copie::scartabile(const Group& gruppo, std::size_t copia) const {
  const auto prima = stato(gruppo.paths[copia]);
  if (!prima) return prima.error();
  if (comeTrovata(gruppo, copia, *prima)) return prima;
  return Error{ErrorKind::invalid, 0, "changed since the scan"};
}

std::optional<FileMark> Copie::conservabile(const Group& gruppo, std::size_t copia,
                                            const std::vector<std::string>& scartate) const {
  const auto prima = scartabile(gruppo, copia);
  if (!prima) return {};
  const bool altroNome = std::any_of(scartate.begin(), scartate.end(), [&](const auto& scartata) {
    const auto altra = stato(scartata);
    return altra && altra->dev == prima->dev && altra->ino == prima->ino;
  });
  return altroNome ? std::nullopt : std::optional(*prima);
}

}  // namespace pellak::trash
